# Cross compiler for 64-bit Windows: the posix-threads flavour of mingw-w64, everything static, so
# that each module imports system libraries only.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(OB_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${OB_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${OB_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${OB_TRIPLE}-windres)
set(CMAKE_AR /usr/bin/${OB_TRIPLE}-gcc-ar-posix CACHE FILEPATH "" FORCE)
set(CMAKE_RANLIB /usr/bin/${OB_TRIPLE}-gcc-ranlib-posix CACHE FILEPATH "" FORCE)

# -static-libgcc and -static-libstdc++ alone would still import libwinpthread.
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static")
endforeach()

# Nothing of the machine that builds may be found: neither headers nor libraries nor packages.
list(APPEND CMAKE_FIND_ROOT_PATH /usr/${OB_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} /nonexistent)
set(ENV{PKG_CONFIG_PATH} "")

# Through ccache where there is one; compile-cached has the settings and why.
find_program(OB_CCACHE ccache)
if(OB_CCACHE)
    get_filename_component(checkout "${CMAKE_CURRENT_LIST_DIR}/.." ABSOLUTE)
    set(CMAKE_C_COMPILER_LAUNCHER "${CMAKE_CURRENT_LIST_DIR}/compile-cached" "${checkout}" "${OB_CCACHE}")
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_C_COMPILER_LAUNCHER})
endif()
