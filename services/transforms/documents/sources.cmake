# The sources of the room for the Windows build and the native one.
set(OB_DOCUMENT_SOURCES
    LocalPath.cpp)
list(TRANSFORM OB_DOCUMENT_SOURCES PREPEND "${CMAKE_CURRENT_LIST_DIR}/")
