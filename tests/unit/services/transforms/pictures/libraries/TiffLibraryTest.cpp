// The TIFF library as it was built for this system: what it writes it reads in each compression
// that pictures use, and a damaged file is an error.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include <tiffio.h>

namespace {
using Bytes = std::vector<unsigned char>;

struct MemoryFile {
    Bytes bytes;
    uint64_t at = 0;
};

MemoryFile& Of(thandle_t handle) { return *static_cast<MemoryFile*>(handle); }

tmsize_t Read(thandle_t handle, void* to, tmsize_t count) {
    auto& file = Of(handle);
    const uint64_t left = file.at < file.bytes.size() ? file.bytes.size() - file.at : 0;
    const auto taken = static_cast<size_t>(std::min<uint64_t>(left, static_cast<uint64_t>(count)));
    if (taken) memcpy(to, &file.bytes[file.at], taken);
    file.at += taken;
    return static_cast<tmsize_t>(taken);
}

tmsize_t Write(thandle_t handle, void* from, tmsize_t count) {
    auto& file = Of(handle);
    if (file.bytes.size() < file.at + static_cast<size_t>(count))
        file.bytes.resize(file.at + static_cast<size_t>(count));
    memcpy(&file.bytes[file.at], from, static_cast<size_t>(count));
    file.at += static_cast<size_t>(count);
    return count;
}

toff_t Seek(thandle_t handle, toff_t offset, int from) {
    auto& file = Of(handle);
    return file.at = from == SEEK_SET   ? offset
                     : from == SEEK_CUR ? file.at + offset
                                        : file.bytes.size() + offset;
}

int Close(thandle_t) { return 0; }

toff_t Size(thandle_t handle) { return Of(handle).bytes.size(); }

TIFF* Open(MemoryFile& file, const char* mode) {
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    file.at = 0;
    return TIFFClientOpen("memory", mode, &file, Read, Write, Seek, Close, Size, nullptr, nullptr);
}

const unsigned Width = 64, Height = 48;

Bytes Gradient() {
    Bytes pixels(Width * Height * 3);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<unsigned char>(i / 3 % Width * 4);
    return pixels;
}

MemoryFile Encode(const Bytes& pixels, int compression) {
    MemoryFile file;
    TIFF* tiff = Open(file, "wm");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, Width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, Height);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 16);
    for (unsigned y = 0; y < Height; ++y)
        EXPECT_EQ(TIFFWriteScanline(tiff, const_cast<unsigned char*>(&pixels[y * Width * 3]), y, 0),
                  1);
    TIFFClose(tiff);
    return file;
}

// Empty when the file can't be read.
Bytes Decode(MemoryFile file) {
    TIFF* tiff = Open(file, "rm");
    if (!tiff) return {};
    Bytes pixels(Width * Height * 3);
    bool good = TIFFScanlineSize(tiff) == Width * 3;
    for (unsigned y = 0; good && y < Height; ++y)
        good = TIFFReadScanline(tiff, &pixels[y * Width * 3], y, 0) == 1;
    TIFFClose(tiff);
    return good ? pixels : Bytes{};
}

TEST(TiffLibrary, ReadsWhatItWroteInEachCompression) {
    for (int compression :
         {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_PACKBITS, COMPRESSION_ADOBE_DEFLATE})
        EXPECT_EQ(Decode(Encode(Gradient(), compression)), Gradient()) << compression;
}

TEST(TiffLibrary, HasTheJpegCodec) {
    EXPECT_NE(TIFFIsCODECConfigured(COMPRESSION_JPEG), 0);
    const auto pixels = Gradient(), again = Decode(Encode(pixels, COMPRESSION_JPEG));
    ASSERT_EQ(again.size(), pixels.size());
    for (size_t i = 0; i < pixels.size(); ++i) ASSERT_NEAR(again[i], pixels[i], 24) << i;
}

TEST(TiffLibrary, ReportsADamagedFileByAnError) {
    const auto file = Encode(Gradient(), COMPRESSION_LZW);
    EXPECT_TRUE(Decode({}).empty());
    for (size_t i = 0; i < file.bytes.size(); ++i) {
        auto damaged = file;
        damaged.bytes[i] ^= 0xFF;
        Decode(damaged);
    }
    auto cut = file;
    cut.bytes.resize(cut.bytes.size() / 2);
    EXPECT_TRUE(Decode(cut).empty());
}
} // namespace
