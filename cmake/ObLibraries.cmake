# The libraries that tools/setup built, as imported targets. Each exposes its own prefix only.
#   dep::gtest   GoogleTest and its mocks (tests only)
#   dep::boost   Boost's headers
#   dep::zlib    zlib, static
#   dep::lzma    liblzma, static
#   dep::libzip  libzip, static, with what it needs
#   dep::libdeflate  libdeflate, static, its compressor only
#   dep::mbedtls  AES and HMAC by SHA-1, static
#   dep::zxcvbn  how hard a password is to guess, with its word lists, static
#   dep::jpeg    libjpeg-turbo, static, with its SIMD code
#   dep::png     libpng, static
#   dep::tiff    libtiff, static, with what it needs
#   dep::webp    libwebp with its container parts (mux, demux), static
#   dep::lcms    colour profiles, static
#   dep::qpdf    PDF, static, with what it needs
#   dep::pugixml_bytes  an XML reader for texts of bytes, static (tests only); a program that links
#                 dep::pugixml can't link it too
#   ${OB_HEIF_DLL}  libheif with libde265 inside: a DLL, loaded at run time and linked by nothing
#   dep::pugixml  an XML reader in its wide form, static (tests and measurements only); its source
#                 is in ${OB_PREFIX_PUGIXML}/source
if(NOT EXISTS "${CMAKE_SOURCE_DIR}/build/setup.cmake")
    message(FATAL_ERROR "Run tools/setup first: it builds the libraries and writes down their paths.")
endif()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/build/setup.cmake")
include("${CMAKE_SOURCE_DIR}/build/setup.cmake")

function(ob_imported name prefix)
    if(NOT IS_DIRECTORY "${prefix}")
        message(FATAL_ERROR "The library ${name} isn't there. Run tools/setup: it builds what is missing.")
    endif()
    cmake_parse_arguments(arg "" "" "ARCHIVES;LIBS;DEFINITIONS" ${ARGN})
    add_library(dep::${name} INTERFACE IMPORTED GLOBAL)
    target_include_directories(dep::${name} SYSTEM INTERFACE "${prefix}/include")
    foreach(archive ${arg_ARCHIVES})
        target_link_libraries(dep::${name} INTERFACE "${prefix}/lib/${archive}")
    endforeach()
    target_link_libraries(dep::${name} INTERFACE ${arg_LIBS})
    target_compile_definitions(dep::${name} INTERFACE ${arg_DEFINITIONS})
endfunction()

ob_imported(gtest "${OB_PREFIX_GOOGLETEST}" ARCHIVES libgmock.a libgtest.a)
ob_imported(boost "${OB_PREFIX_BOOST}")
ob_imported(zlib "${OB_PREFIX_ZLIB}" ARCHIVES libz.a)
ob_imported(lzma "${OB_PREFIX_LZMA}" ARCHIVES liblzma.a DEFINITIONS LZMA_API_STATIC)
ob_imported(libzip "${OB_PREFIX_LIBZIP}" ARCHIVES libzip.a LIBS dep::zlib dep::lzma bcrypt advapi32)
ob_imported(libdeflate "${OB_PREFIX_LIBDEFLATE}" ARCHIVES libdeflate.a)
ob_imported(mbedtls "${OB_PREFIX_MBEDTLS}" ARCHIVES libmbedcrypto.a)
ob_imported(zxcvbn "${OB_PREFIX_ZXCVBN}" ARCHIVES libzxcvbn.a)
ob_imported(pugixml "${OB_PREFIX_PUGIXML}" ARCHIVES libpugixml.a DEFINITIONS PUGIXML_WCHAR_MODE)
ob_imported(jpeg "${OB_PREFIX_JPEG}" ARCHIVES libjpeg.a)
ob_imported(png "${OB_PREFIX_PNG}" ARCHIVES libpng.a LIBS dep::zlib)
ob_imported(tiff "${OB_PREFIX_TIFF}" ARCHIVES libtiff.a LIBS dep::jpeg dep::zlib)
ob_imported(webp "${OB_PREFIX_WEBP}" ARCHIVES libwebpmux.a libwebpdemux.a libwebp.a)
ob_imported(lcms "${OB_PREFIX_LCMS}" ARCHIVES liblcms2.a)
ob_imported(qpdf "${OB_PREFIX_QPDF}" ARCHIVES libqpdf.a LIBS dep::jpeg dep::zlib advapi32
    DEFINITIONS POINTERHOLDER_TRANSITION=4)
ob_imported(pugixml_bytes "${OB_PREFIX_PUGIXMLBYTES}" ARCHIVES libpugixmlbytes.a)
set(OB_HEIF_DLL "${OB_PREFIX_HEIF}/bin/libheif.dll")
