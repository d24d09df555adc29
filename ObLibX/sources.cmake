# The sources of the XML document library and of what dialogs are described with, for both builds:
# Windows (ObLibX/CMakeLists.txt) and native (fuzzing/CMakeLists.txt). Include it; it sets
#   OBX_XML_SOURCES          what builds everywhere, the packed name tables among them
#   OBX_XML_WINDOWS_SOURCES  the Windows side of src/xml/encoding/SystemCalls.h
#   OBX_DIALOG_DATA_SOURCES  of src/dialog, what builds everywhere
#   OBX_CONTROL_DATA_SOURCES of src/controls, what builds everywhere
set(names
    names/NameTables
    scan/OpenTagStack
    scan/TagScanner
    scan/NodeRules
    scan/QuickScan
    scan/DocumentReport
    scan/TextCoding
    scan/StreamTagStack
    encoding/TextConverter
    encoding/TextConverterBoundary
    encoding/TextConverterDeclaration
    encoding/TextFileChannel
    document/ElementRecordTable
    document/DocumentState
    document/DocumentStateParser
    document/XmlPath
    document/Navigation
    document/AttributeCursor
    document/Editing
    document/Shifting
    document/ElementText
    stream/StreamReading
    stream/StreamWriting
    stream/StreamFile
    XmlOffsetDocument)
set(OBX_XML_SOURCES "")
foreach(name ${names})
    list(APPEND OBX_XML_SOURCES "${CMAKE_CURRENT_LIST_DIR}/src/xml/${name}.cpp")
endforeach()
include("${CMAKE_CURRENT_LIST_DIR}/../cmake/ObNameTables.cmake")
ob_name_tables(tables)
list(APPEND OBX_XML_SOURCES "${tables}")

set(OBX_XML_WINDOWS_SOURCES "${CMAKE_CURRENT_LIST_DIR}/src/xml/encoding/SystemCallsWindows.cpp")

# What a dialog is described with, and its arithmetic: no window, no registry.
set(OBX_DIALOG_DATA_SOURCES "")
foreach(name DialogDescription DialogTemplate FontSubstitution ImageSet ObXML ObXMLNode Pixels ScrollAreas
        WindowPlacement)
    list(APPEND OBX_DIALOG_DATA_SOURCES "${CMAKE_CURRENT_LIST_DIR}/src/dialog/${name}.cpp")
endforeach()

# Tables and arithmetic of the flat controls, without a window.
set(OBX_CONTROL_DATA_SOURCES "")
foreach(name
        ButtonLayout
        ComboLayout
        ControlImages
        ControlKinds
        EditLayout
        FadedColor
        HolderLayout
        LinkFit
        ListColours
        ListColumns
        ListLayout
        ProgressLayout
        ScrollLayout
        SpinLayout
        SwitchLayout
        TextFit)
    list(APPEND OBX_CONTROL_DATA_SOURCES "${CMAKE_CURRENT_LIST_DIR}/src/controls/${name}.cpp")
endforeach()
