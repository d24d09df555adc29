# The base library's portable sources, for both builds: Windows (ObLib/CMakeLists.txt) and native
# (fuzzing/CMakeLists.txt). Include it; it sets OB_LIB_SOURCES.
set(names ObBuffer ObFatal ObString ObStringText StringCore StringPool)
set(OB_LIB_SOURCES "")
foreach(name ${names})
    set(source "${CMAKE_CURRENT_LIST_DIR}/Src/${name}.cpp")
    if(OB_PARTIAL AND NOT EXISTS "${source}")
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${CMAKE_CURRENT_LIST_DIR}/Src")
    else()
        list(APPEND OB_LIB_SOURCES "${source}")
    endif()
endforeach()
