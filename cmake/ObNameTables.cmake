# ob_name_tables(OUT): puts the path of a source file into OUT that the build makes from the name
# lists of the XML library. For every build that compiles ObLibX/src/xml, whatever its top folder.
set(OB_NAME_LISTS "${CMAKE_CURRENT_LIST_DIR}/../ObLibX/src/xml/names")
include("${CMAKE_CURRENT_LIST_DIR}/ObPython.cmake")

function(ob_name_tables out)
    get_filename_component(lists "${OB_NAME_LISTS}" ABSOLUTE)
    set(source "${CMAKE_CURRENT_BINARY_DIR}/NameTableData.cpp")
    add_custom_command(OUTPUT "${source}"
        COMMAND "${OB_PYTHON3}" "${lists}/pack_names.py" "${source}"
        DEPENDS "${lists}/pack_names.py" "${lists}/charsets.txt" "${lists}/entities.txt"
        COMMENT "Packing the name tables" VERBATIM)
    set(${out} "${source}" PARENT_SCOPE)
endfunction()
