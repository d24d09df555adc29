# What every folder's CMakeLists.txt uses. In short:
#
#   ob_subdirectories(FOLDER...)        adds the folders in the order given; a missing one is an error
#   ob_headers(T [LIBS ...])            a floor that is headers only
#   ob_room(T SOURCES ... [LIBS ...])   a static library: one room or floor
#   ob_module(T OUTPUT name DEF file SOURCES ... [RESOURCES ...] [LIBS ...])   a DLL
#   ob_version(T description)           the version resource of a module or program that ships
#   ob_load_late(T library...)          a module's system libraries that are loaded at their first call
#   ob_program(T [OUTPUT name] [GUI] SOURCES ... [RESOURCES ...] [LIBS ...])   an EXE with wmain
#   ob_test(T SOURCES ... [LIBS ...] [RESOURCES ...] [STAGE ...] [TIMEOUT s] [ENV ...])
#
# LIBS of a room are PUBLIC: who links a room sees what the room is built on, and nothing above it.
# Headers are included from the repository's root ("contracts/...", "ObLib/Src/...",
# "services/...", "tests/support/...") and from WebVellant/ ("OBCore/...", "obwmv/...").

add_library(ob_base INTERFACE)
target_include_directories(ob_base INTERFACE "${CMAKE_SOURCE_DIR}" "${CMAKE_SOURCE_DIR}/WebVellant")
# "= {sizeof record}" is how the system's records are begun; the rest is zero by the language.
target_compile_options(ob_base INTERFACE
    $<$<COMPILE_LANGUAGE:C,CXX>:-Wall;-Wextra;-Werror;-Wno-missing-field-initializers>)
target_compile_definitions(ob_base INTERFACE
    UNICODE _UNICODE _WIN32_WINNT=0x0A00 WINVER=0x0A00 NTDDI_VERSION=0x0A000000)

# Sections that begin on pages of the file are mapped by any loader, and read only as far as they are
# used; ones packed closer are copied whole by some. It takes a few kilobytes of each file.
set(OB_PAGED_FILE -Wl,--file-alignment,4096)

function(ob_subdirectories)
    foreach(folder ${ARGN})
        if(NOT EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/CMakeLists.txt")
            message(FATAL_ERROR "${CMAKE_CURRENT_SOURCE_DIR} names the folder ${folder}, which has no CMakeLists.txt")
        endif()
        add_subdirectory(${folder})
    endforeach()
endfunction()

# ob_headers(<target> [LIBS ...])
function(ob_headers target)
    cmake_parse_arguments(arg "" "" "LIBS" ${ARGN})
    add_library(${target} INTERFACE)
    target_link_libraries(${target} INTERFACE ob_base ${arg_LIBS})
endfunction()

# ob_room(<target> SOURCES <files> [LIBS <targets, system libraries>])
function(ob_room target)
    cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
    add_library(${target} STATIC ${arg_SOURCES})
    target_link_libraries(${target} PUBLIC ob_base ${arg_LIBS})
    ob_share_windows_header(${target})
endfunction()

# <windows.h>, half of what most files cost to compile, is precompiled once for all targets, by the first room
# that there is. Only this header: out of a precompiled one the compiler takes the standard library's
# code for our own and warns of it. A file still includes what it uses. ccache needs -fpch-preprocess. A source
# that has compiler options of its own sets SKIP_PRECOMPILE_HEADERS, as the header was compiled without them.
function(ob_share_windows_header target)
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-fpch-preprocess>)
    get_property(first GLOBAL PROPERTY OB_WINDOWS_HEADER_TARGET)
    if(first)
        target_precompile_headers(${target} REUSE_FROM ${first})
    else()
        set_property(GLOBAL PROPERTY OB_WINDOWS_HEADER_TARGET ${target})
        target_precompile_headers(${target} PRIVATE <windows.h>)
    endif()
endfunction()

# ob_resources(<target> <rc files>): resource scripts are UTF-8 and include from the source roots
# and from the build folder (drawn art, generated headers). They are built again when any file
# beside them changes, as windres doesn't report what it read.
function(ob_resources target)
    foreach(script ${ARGN})
        get_filename_component(folder "${script}" DIRECTORY)
        if(NOT IS_ABSOLUTE "${script}")
            set(folder "${CMAKE_CURRENT_SOURCE_DIR}/${folder}")
        endif()
        file(GLOB_RECURSE companions CONFIGURE_DEPENDS
            "${folder}/*.rc" "${folder}/*.h" "${folder}/*.rc2" "${folder}/*.rcinc"
            "${folder}/*.manifest" "${folder}/*.xml" "${folder}/*.bmp" "${folder}/*.ico" "${folder}/*.html")
        list(FILTER companions EXCLUDE REGEX "/build/")
        set_property(SOURCE ${script} APPEND PROPERTY OBJECT_DEPENDS ${companions})
        set_property(SOURCE ${script} APPEND PROPERTY INCLUDE_DIRECTORIES
            "${CMAKE_SOURCE_DIR}" "${CMAKE_SOURCE_DIR}/WebVellant" "${folder}"
            "${CMAKE_CURRENT_BINARY_DIR}")
        set_property(SOURCE ${script} APPEND PROPERTY COMPILE_OPTIONS "--codepage=65001")
    endforeach()
    target_sources(${target} PRIVATE ${ARGN})
endfunction()

# ob_module(<target> OUTPUT <file name without .dll> DEF <file.def> SOURCES ... [RESOURCES <rc>]
#           [LIBS ...]): exports what the .def names and nothing else; stripped; no lib prefix.
# Its import library is what others link (target_link_libraries(x <target>)).
function(ob_module target)
    cmake_parse_arguments(arg "" "OUTPUT;DEF" "SOURCES;RESOURCES;LIBS" ${ARGN})
    add_library(${target} SHARED ${arg_SOURCES} ${arg_DEF})
    set_target_properties(${target} PROPERTIES PREFIX "" IMPORT_PREFIX "" OUTPUT_NAME "${arg_OUTPUT}")
    target_link_libraries(${target} PRIVATE ob_base ${arg_LIBS})
    ob_share_windows_header(${target})
    target_link_options(${target} PRIVATE -s -Wl,--exclude-all-symbols ${OB_PAGED_FILE})
    if(arg_DEF)
        get_filename_component(def "${arg_DEF}" ABSOLUTE)
        set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${def}")
    endif()
    ob_resources(${target} ${arg_RESOURCES})
endfunction()

# ob_version(<target> <description>): gives a module or program of the product its version resource,
# with the version of the project.
function(ob_version target OB_VERSION_DESCRIPTION)
    get_target_property(OB_VERSION_NAME ${target} OUTPUT_NAME)
    if(NOT OB_VERSION_NAME)
        set(OB_VERSION_NAME ${target})
    endif()
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "EXECUTABLE")
        set(OB_VERSION_FILE "${OB_VERSION_NAME}.exe")
        set(OB_VERSION_TYPE VFT_APP)
    else()
        set(OB_VERSION_FILE "${OB_VERSION_NAME}.dll")
        set(OB_VERSION_TYPE VFT_DLL)
    endif()
    string(REPLACE "." ", " OB_VERSION_NUMBERS "${PROJECT_VERSION}")
    set(script "${CMAKE_CURRENT_BINARY_DIR}/${OB_VERSION_NAME}-version.rc")
    configure_file("${CMAKE_SOURCE_DIR}/cmake/Version.rc.in" "${script}" @ONLY)
    set_property(SOURCE "${script}" APPEND PROPERTY COMPILE_OPTIONS "--codepage=65001")
    target_sources(${target} PRIVATE "${script}")
endfunction()

# ob_load_late(<target> <system library>...): a module that is loaded on the way to something visible
# doesn't bring along what is called later or never. The import libraries that do so are made from the
# toolchain's own and come first in the search. Calls look the same in the sources; a library
# that isn't there would end the first of them with a system exception, so it is for libraries that
# every system has.
function(ob_load_late target)
    set(folder "${CMAKE_CURRENT_BINARY_DIR}/${target}-late")
    file(MAKE_DIRECTORY "${folder}")
    foreach(library ${ARGN})
        if(NOT EXISTS "${folder}/lib${library}.a")
            ob_make_late_library(${library} "${folder}")
        endif()
    endforeach()
    target_link_directories(${target} BEFORE PRIVATE "${folder}")
endfunction()

function(ob_make_late_library library folder)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=lib${library}.a
        OUTPUT_VARIABLE ordinary OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND ${CMAKE_NM} "${ordinary}"
        OUTPUT_VARIABLE symbols ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "__imp_[A-Za-z0-9_]+" entries "${symbols}")
    list(TRANSFORM entries REPLACE "^__imp_" "    ")
    list(REMOVE_DUPLICATES entries)
    list(JOIN entries "\n" names)
    file(WRITE "${folder}/${library}.def" "LIBRARY ${library}.dll\nEXPORTS\n${names}\n")
    execute_process(
        COMMAND ${CMAKE_DLLTOOL} -d ${library}.def -y lib${library}.a
        WORKING_DIRECTORY "${folder}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# ob_program(<target> [OUTPUT <file name without .exe>] [GUI] SOURCES ... [RESOURCES <rc>]
#            [LIBS ...]): wmain, or wWinMain with GUI; stripped.
function(ob_program target)
    cmake_parse_arguments(arg "GUI" "OUTPUT" "SOURCES;RESOURCES;LIBS" ${ARGN})
    add_executable(${target} ${arg_SOURCES})
    if(arg_OUTPUT)
        set_target_properties(${target} PROPERTIES OUTPUT_NAME "${arg_OUTPUT}")
    endif()
    if(arg_GUI)
        set_target_properties(${target} PROPERTIES WIN32_EXECUTABLE ON)
    endif()
    target_link_libraries(${target} PRIVATE ob_base ${arg_LIBS})
    ob_share_windows_header(${target})
    target_link_options(${target} PRIVATE -municode -s ${OB_PAGED_FILE})
    ob_resources(${target} ${arg_RESOURCES})
endfunction()

# ob_test(<name> SOURCES ... [LIBS ...] [RESOURCES <rc>] [STAGE <item>...] [TIMEOUT <seconds>]
#         [ENV NAME=VALUE ...] [LABELS ...] [RUN <wine-run options>...] [SUITES <suite>...]
#         [COST <seconds>] [SERIAL])
#
# One GoogleTest program and one ctest entry, <name>.<Suite>, for each suite that its sources
# define, so that suites run side by side, each in a fresh prefix. Suites are read from SOURCES at
# build time; a suite that is written in a header is named under SUITES. A suite that the program
# has and no entry runs is an error of every entry, and so is an entry that matches no test.
#
# STAGE items are beside the program when it runs, as copies of its own: a target (its built file),
# a file or a folder; "name=item" gives it another name or a folder ("sub/name.dll=target").
# TIMEOUT is for one suite (default 60). RUN hands options on to tools/wine-run (--dpi 144, --services ...).
# COST is about what the longest of the suites takes, where that is more than ten seconds: such suites begin first,
# so that none of them runs alone at the end. ctest takes times that it has measured itself for all others.
# SERIAL keeps the suites from running beside other tests.
function(ob_test name)
    cmake_parse_arguments(arg "SERIAL" "TIMEOUT;COST" "SOURCES;LIBS;RESOURCES;STAGE;ENV;LABELS;RUN;SUITES" ${ARGN})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 60)
    endif()
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ob_base ob_test_main ${arg_LIBS})
    # Without symbols, a program has half the size; nothing reads them under Wine.
    target_link_options(${name} PRIVATE -municode -s ${OB_PAGED_FILE})
    ob_resources(${name} ${arg_RESOURCES})
    target_precompile_headers(${name} REUSE_FROM ob_test_main)
    ob_test_options(${name})

    set(options --own-code --timeout ${arg_TIMEOUT} --env OB_TEST_TIMEOUT=${arg_TIMEOUT})
    foreach(item ${arg_ENV})
        list(APPEND options --env "${item}")
    endforeach()
    foreach(item ${arg_STAGE})
        ob_stage_item(${name} "${item}" staged)
        list(APPEND options --stage "${staged}")
    endforeach()
    list(APPEND options ${arg_RUN})
    ob_register_suites(${name} "${options}" "${arg_TIMEOUT}" "${arg_COST}" "${arg_SERIAL}" "${arg_LABELS}"
        "${arg_SUITES}" ${arg_SOURCES})
endfunction()

# How tests, and the header that they share, are compiled. ccache needs -fpch-preprocess. Out of a
# precompiled header the compiler takes the standard library's code for the test's own and warns of
# it: those warnings, which it suppresses in a system header, are off.
function(ob_test_options target)
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-O1;-fpch-preprocess;-Wno-array-bounds;-Wno-restrict;-Wno-stringop-overflow;-Wno-stringop-overread>)
endfunction()

# Turns a STAGE item into wine-run's form. A target makes the test depend on it.
function(ob_stage_item test item out)
    set(rename "")
    if("${item}" MATCHES "^([^=]+)=(.+)$")
        set(rename "${CMAKE_MATCH_1}=")
        set(item "${CMAKE_MATCH_2}")
    endif()
    get_filename_component(path "${item}" ABSOLUTE BASE_DIR "${CMAKE_CURRENT_SOURCE_DIR}")
    if(EXISTS "${path}" AND NOT TARGET "${item}")
        set(${out} "${rename}${path}" PARENT_SCOPE)
    elseif(IS_ABSOLUTE "${item}" OR "${item}" MATCHES "^\\$<")
        set(${out} "${rename}${item}" PARENT_SCOPE)
    else()
        # A target of any folder, also of one that is added later.
        set(${out} "${rename}$<TARGET_FILE:${item}>" PARENT_SCOPE)
        add_dependencies(${test} ${item})
    endif()
endfunction()

# The ctest entries are written at build time, when sources change, by ObTestSuites.cmake; ctest
# reads them through the folder's TEST_INCLUDE_FILES.
function(ob_register_suites name options timeout cost serial labels extra)
    set(sources "")
    foreach(source ${ARGN})
        get_filename_component(path "${source}" ABSOLUTE)
        list(APPEND sources "${path}")
    endforeach()
    set(base "${CMAKE_CURRENT_BINARY_DIR}/${name}-suites")
    file(GENERATE OUTPUT "${base}.args.cmake" CONTENT
"set(name [==[${name}]==])
set(program [==[$<TARGET_FILE:${name}>]==])
set(python [==[${OB_PYTHON3}]==])
set(wine_run [==[${CMAKE_SOURCE_DIR}/tools/wine-run]==])
set(options [==[${options}]==])
set(timeout [==[${timeout}]==])
set(cost [==[${cost}]==])
set(serial [==[${serial}]==])
set(labels [==[${labels}]==])
set(extra [==[${extra}]==])
set(sources [==[${sources}]==])
")
    add_custom_command(OUTPUT "${base}.cmake"
        COMMAND ${CMAKE_COMMAND} -D "base=${base}" -P "${CMAKE_SOURCE_DIR}/cmake/ObTestSuites.cmake"
        DEPENDS ${sources} "${base}.args.cmake" "${CMAKE_SOURCE_DIR}/cmake/ObTestSuites.cmake"
        COMMENT "Listing the suites of ${name}" VERBATIM)
    target_sources(${name} PRIVATE "${base}.cmake")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${base}.include.cmake")
    # A program that was never built has a failing entry, not none.
    file(WRITE "${base}.include.cmake"
"if(EXISTS \"${base}.cmake\")
    include(\"${base}.cmake\")
else()
    add_test(${name}.not_built \"${CMAKE_COMMAND}\" -E false)
endif()
")
endfunction()
