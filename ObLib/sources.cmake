# The base library's portable sources, for both builds: Windows (ObLib/CMakeLists.txt) and native
# (fuzzing/CMakeLists.txt). Include it; it sets OB_LIB_SOURCES.
set(names ObBuffer ObFatal ObString ObStringText StringCore StringPool)
set(OB_LIB_SOURCES "")
foreach(name ${names})
    list(APPEND OB_LIB_SOURCES "${CMAKE_CURRENT_LIST_DIR}/Src/${name}.cpp")
endforeach()
