# The sources of the room, for the Windows build and the native one.
set(OB_PERSONAL_SOURCES
    Analysis.cpp
    Crc32.cpp
    ExifBlock.cpp
    ExifTags.cpp
    ExtentMap.cpp
    Findings.cpp
    Gif.cpp
    Jpeg.cpp
    JpegSegments.cpp
    PersonalData.cpp
    Png.cpp
    RiffChunks.cpp
    Tiff.cpp
    TiffContent.cpp
    TiffDirectory.cpp
    TiffTags.cpp
    TiffWriter.cpp
    WebP.cpp)
list(TRANSFORM OB_PERSONAL_SOURCES PREPEND "${CMAKE_CURRENT_LIST_DIR}/")
