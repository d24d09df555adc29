# The sources of the room for the Windows build and the native one.
set(OB_DOCUMENT_SOURCES
    Deflate.cpp
    LocalPath.cpp
    Odf.cpp
    OdfRules.cpp
    OfficeFile.cpp
    Ooxml.cpp
    OoxmlParts.cpp
    OoxmlRules.cpp
    Package.cpp
    XmlNames.cpp
    XmlReader.cpp
    XmlRules.cpp
    ZipReader.cpp
    ZipWriter.cpp)
list(TRANSFORM OB_DOCUMENT_SOURCES PREPEND "${CMAKE_CURRENT_LIST_DIR}/")
