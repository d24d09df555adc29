# The sources of the XML document library, for both builds: Windows (ObLibX/CMakeLists.txt) and
# native (fuzzing/CMakeLists.txt). Include it; it sets
#   OBX_XML_SOURCES          what builds everywhere, the packed name tables among them
#   OBX_XML_WINDOWS_SOURCES  what stands behind src/xml/System*.h on Windows
set(names
    XmlCharacters
    ElementRecordTable
    DocumentState
    OpenTagStack
    TagScanner
    NodeRules
    QuickScan
    ElementParser
    DocumentReport
    NameTables
    TextCoding
    XmlPath
    StepMatch
    Navigation
    Reading
    AttributeCursor
    NewElement
    Editing
    AttributeEditing
    Shifting
    ElementText
    TextConverter
    CharBoundary
    TextFileChannel
    DeclaredEncoding
    StreamTagStack
    StreamRecords
    StreamReading
    StreamWriting
    StreamFile
    XmlOffsetDocument)
set(OBX_XML_SOURCES "")
foreach(name ${names})
    set(source "${CMAKE_CURRENT_LIST_DIR}/src/xml/${name}.cpp")
    if(OB_PARTIAL AND NOT EXISTS "${source}")
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${CMAKE_CURRENT_LIST_DIR}/src/xml")
    else()
        list(APPEND OBX_XML_SOURCES "${source}")
    endif()
endforeach()
include("${CMAKE_CURRENT_LIST_DIR}/../cmake/ObNameTables.cmake")
ob_name_tables(tables)
list(APPEND OBX_XML_SOURCES "${tables}")

set(OBX_XML_WINDOWS_SOURCES
    "${CMAKE_CURRENT_LIST_DIR}/src/xml/SystemFileWindows.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/src/xml/SystemTextWindows.cpp")
