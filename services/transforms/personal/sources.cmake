# The sources of the room, for the Windows build and the native one.
set(OB_PERSONAL_SOURCES
    Analysis.cpp
    ExifBlock.cpp
    ExifTags.cpp
    Findings.cpp
    Jpeg.cpp
    JpegSegments.cpp
    PersonalData.cpp
    TiffDirectory.cpp)
list(TRANSFORM OB_PERSONAL_SOURCES PREPEND "${CMAKE_CURRENT_LIST_DIR}/")
