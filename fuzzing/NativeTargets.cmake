# How the native build makes its libraries, tests and fuzzers.

# Every object of a program agrees on these, the test framework's too. The instances of std::wstring
# in the C++ library's own file are for 32 bits.
add_compile_options(-fshort-wchar -include "${CMAKE_CURRENT_LIST_DIR}/shim/WindowsNames.h")
add_compile_definitions(_GLIBCXX_EXTERN_TEMPLATE=0)
set(sanitizers "")
if(OB_SANITIZE)
    set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_compile_options(${sanitizers})
    add_link_options(${sanitizers})
endif()
find_package(Threads REQUIRED)

add_library(ob_base INTERFACE)
target_include_directories(ob_base INTERFACE "${OB_ROOT}" "${OB_ROOT}/WebVellant")
target_compile_options(ob_base INTERFACE -Wall -Wextra -Werror -Wno-missing-field-initializers)

# The names that the Windows build uses for what others wrote: both are found in the system's own
# include folder here.
add_library(dep::boost INTERFACE IMPORTED GLOBAL)
set(framework /usr/src/googletest)
add_library(native_gtest STATIC
    "${framework}/googletest/src/gtest-all.cc" "${framework}/googlemock/src/gmock-all.cc")
target_include_directories(native_gtest SYSTEM PUBLIC
    "${framework}/googletest/include" "${framework}/googlemock/include")
target_include_directories(native_gtest SYSTEM PRIVATE
    "${framework}/googletest" "${framework}/googlemock")
target_link_libraries(native_gtest PUBLIC Threads::Threads)
add_library(dep::gtest ALIAS native_gtest)

# The other XML reader, from the source that setup keeps for this build.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${OB_ROOT}/build/setup.cmake")
include("${OB_ROOT}/build/setup.cmake")
add_library(native_pugixml STATIC EXCLUDE_FROM_ALL "${OB_PREFIX_PUGIXML}/source/pugixml.cpp")
target_include_directories(native_pugixml SYSTEM PUBLIC "${OB_PREFIX_PUGIXML}/source")
target_compile_definitions(native_pugixml PUBLIC PUGIXML_WCHAR_MODE)
add_library(dep::pugixml ALIAS native_pugixml)

# Libraries for pictures and documents, of the distribution: the versions that the Windows build has.
function(native_dependency name)
    add_library(dep::${name} INTERFACE IMPORTED GLOBAL)
    target_link_libraries(dep::${name} INTERFACE ${ARGN})
endfunction()
native_dependency(zlib z)
native_dependency(jpeg jpeg)
native_dependency(png png16 z)
native_dependency(tiff tiff)
native_dependency(webp webpmux webpdemux webp)
native_dependency(lcms lcms2)
native_dependency(libzip zip)
native_dependency(pugixml_bytes pugixml)
native_dependency(qpdf qpdf)
target_compile_definitions(dep::qpdf INTERFACE POINTERHOLDER_TRANSITION=4)
target_compile_options(dep::qpdf INTERFACE "SHELL:-include \"${CMAKE_CURRENT_LIST_DIR}/shim/WithoutJson.h\"")

function(native_library target)
    add_library(${target} STATIC ${ARGN})
    target_link_libraries(${target} PUBLIC ob_base)
    # For the fuzzers: the places that a run came through are counted. It costs the tests nothing
    # that matters, and everything is built once.
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
    if(NOT OB_SANITIZE)
        # What is compared with what costs half of the executions.
        target_compile_options(${target} PRIVATE -fno-sanitize-coverage=trace-cmp)
    endif()
    target_link_options(${target} INTERFACE -fsanitize=fuzzer-no-link)
endfunction()

# native_fuzzer(<targets/NAME.cpp>), which is linked with what the fuzzers share (fuzz_support)
function(native_fuzzer source)
    get_filename_component(name "${source}" NAME_WE)
    add_executable(fuzz_${name} EXCLUDE_FROM_ALL "${source}")
    target_link_libraries(fuzz_${name} PRIVATE fuzz_support)
    target_compile_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    set_target_properties(fuzz_${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/fuzzers")
    add_dependencies(fuzzers fuzz_${name})
endfunction()

# ob_room, ob_headers, ob_test as the folders of tests use them (cmake/ObTargets.cmake documents
# their arguments). One ctest entry a program; what only the launcher for Windows programs needs (STAGE,
# RUN, SUITES, ENV) means nothing here. Tests that need Windows are under if(WIN32) there.
function(ob_room target)
    cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
    native_library(${target} ${arg_SOURCES})
    target_link_libraries(${target} PUBLIC ${arg_LIBS})
endfunction()

function(ob_test name)
    cmake_parse_arguments(arg "SERIAL" "TIMEOUT" "SOURCES;LIBS;RESOURCES;STAGE;ENV;LABELS;RUN;SUITES" ${ARGN})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 60)
    endif()
    add_executable(${name} ${arg_SOURCES} "${OB_ROOT}/fuzzing/shim/TestMainNative.cpp")
    target_link_libraries(${name} PRIVATE ob_base dep::gtest ${arg_LIBS})
    add_test(NAME ${name} COMMAND ${name})
    # What a process allocates at once is refused by the sanitizer above a limit of its own; here it
    # fails as it does without it, so that tests see std::bad_alloc.
    math(EXPR limit "${arg_TIMEOUT} * 4")
    set_tests_properties(${name} PROPERTIES TIMEOUT ${limit}
        ENVIRONMENT "ASAN_OPTIONS=allocator_may_return_null=1:detect_stack_use_after_return=1;UBSAN_OPTIONS=print_stacktrace=1")
endfunction()
