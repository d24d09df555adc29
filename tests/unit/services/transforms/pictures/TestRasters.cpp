// Files of rasters for tests.
#include "tests/unit/services/transforms/pictures/TestRasters.h"

#include <cstring>
#include <memory>
#include <stdexcept>

#include <png.h>
#include <tiffio.h>
#include <webp/decode.h>
#include <webp/encode.h>
#include <webp/mux.h>

namespace obtest {
namespace {

[[noreturn]] void Fail(const char* what) { throw std::runtime_error(what); }
void FailPng(png_structp, png_const_charp text) { Fail(text); }
void IgnorePng(png_structp, png_const_charp) {}

void AppendPng(png_structp png, png_bytep bytes, std::size_t count) {
    auto& file = *static_cast<PictureBytes*>(png_get_io_ptr(png));
    file.insert(file.end(), bytes, bytes + count);
}
void FlushPng(png_structp) {}

struct Unread {
    const std::uint8_t *next, *end;
};
void TakePng(png_structp png, png_bytep bytes, std::size_t count) {
    auto& unread = *static_cast<Unread*>(png_get_io_ptr(png));
    if (static_cast<std::size_t>(unread.end - unread.next) < count) Fail("short");
    std::memcpy(bytes, unread.next, count);
    unread.next += count;
}

std::vector<png_bytep> RowsOf(const Raster& raster) {
    std::vector<png_bytep> rows;
    const std::size_t stride =
        static_cast<std::size_t>(raster.width) * raster.channels * raster.bits / 8;
    for (unsigned y = 0; y < raster.height; ++y)
        rows.push_back(const_cast<png_bytep>(&raster.bytes[y * stride]));
    return rows;
}

PictureBytes WritePng(const Raster& raster, int colour, const PngMaking& making,
                      const std::vector<std::uint32_t>& colours) {
    PictureBytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, FailPng, IgnorePng);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &file, AppendPng, FlushPng);
    png_set_IHDR(png, info, raster.width, raster.height, static_cast<int>(raster.bits), colour,
                 making.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, 0, 0);
    std::vector<png_color> palette;
    for (auto c : colours)
        palette.push_back({static_cast<png_byte>(c >> 16), static_cast<png_byte>(c >> 8),
                           static_cast<png_byte>(c)});
    if (!palette.empty()) png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
    png_write_info(png, info);
    for (const auto& [type, text] : making.chunks)
        png_write_chunk(png, reinterpret_cast<png_const_bytep>(type.c_str()),
                        reinterpret_cast<png_const_bytep>(text.data()), text.size());
    if (raster.bits == 16) png_set_swap(png);
    auto rows = RowsOf(raster);
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return file;
}

struct MemoryFile {
    PictureBytes bytes;
    std::uint64_t at = 0;
};
MemoryFile& Of(thandle_t handle) { return *static_cast<MemoryFile*>(handle); }

tmsize_t ReadMemory(thandle_t handle, void* to, tmsize_t count) {
    auto& file = Of(handle);
    const std::uint64_t left = file.at < file.bytes.size() ? file.bytes.size() - file.at : 0;
    const auto taken =
        static_cast<std::size_t>(std::min<std::uint64_t>(left, static_cast<std::uint64_t>(count)));
    if (taken) std::memcpy(to, &file.bytes[file.at], taken);
    file.at += taken;
    return static_cast<tmsize_t>(taken);
}
tmsize_t WriteMemory(thandle_t handle, void* from, tmsize_t count) {
    auto& file = Of(handle);
    const auto size = static_cast<std::size_t>(count);
    if (file.bytes.size() < file.at + size) file.bytes.resize(file.at + size);
    std::memcpy(&file.bytes[file.at], from, size);
    file.at += size;
    return count;
}
toff_t SeekMemory(thandle_t handle, toff_t offset, int from) {
    auto& file = Of(handle);
    return file.at = from == SEEK_SET   ? offset
                     : from == SEEK_CUR ? file.at + offset
                                        : file.bytes.size() + offset;
}
int CloseMemory(thandle_t) { return 0; }
toff_t SizeMemory(thandle_t handle) { return Of(handle).bytes.size(); }

TIFF* OpenTiff(MemoryFile& file, const char* mode) {
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    TIFF* tiff = TIFFClientOpen("memory", mode, &file, ReadMemory, WriteMemory, SeekMemory,
                                CloseMemory, SizeMemory, nullptr, nullptr);
    if (!tiff) Fail("no TIFF");
    return tiff;
}

void SetTags(TIFF* tiff, const Raster& raster, const TiffMaking& making) {
    const int photometric[] = {PHOTOMETRIC_MINISBLACK, PHOTOMETRIC_RGB, PHOTOMETRIC_SEPARATED};
    const unsigned colours = raster.channels == 2 ? 1 : raster.channels == 4 ? 3 : raster.channels;
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, raster.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, raster.height);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, raster.channels);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, raster.bits);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, photometric[colours == 1 ? 0 : 1]);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, making.compression);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, making.orientation);
    const std::uint16_t extra =
        making.premultiplied ? EXTRASAMPLE_ASSOCALPHA : EXTRASAMPLE_UNASSALPHA;
    if (colours < raster.channels) TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &extra);
    if (!making.profile.empty())
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<unsigned>(making.profile.size()),
                     making.profile.data());
    if (!making.xmp.empty())
        TIFFSetField(tiff, TIFFTAG_XMLPACKET, static_cast<unsigned>(making.xmp.size()),
                     making.xmp.data());
    if (!making.artist.empty()) TIFFSetField(tiff, TIFFTAG_ARTIST, making.artist.c_str());
}

void WriteTiles(TIFF* tiff, const Raster& raster) {
    const unsigned pixel = raster.channels * raster.bits / 8;
    TIFFSetField(tiff, TIFFTAG_TILEWIDTH, 32);
    TIFFSetField(tiff, TIFFTAG_TILELENGTH, 16);
    for (unsigned y = 0; y < raster.height; y += 16)
        for (unsigned x = 0; x < raster.width; x += 32) {
            PictureBytes tile(32 * 16 * pixel);
            for (unsigned v = y; v < std::min(y + 16, raster.height); ++v)
                std::memcpy(&tile[(v - y) * 32 * pixel],
                            &raster.bytes[(v * raster.width + x) * pixel],
                            std::min(32u, raster.width - x) * pixel);
            if (TIFFWriteTile(tiff, tile.data(), x, y, 0, 0) < 0) Fail("tile");
        }
}

std::string TextOf(TIFF* tiff, unsigned tag) {
    std::uint32_t count = 0;
    void* bytes = nullptr;
    if (!TIFFGetField(tiff, tag, &count, &bytes)) return {};
    return {static_cast<const char*>(bytes), count};
}

void Put(PictureBytes& file, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i) file.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}
std::uint32_t Take(const PictureBytes& file, std::size_t at, int count) {
    std::uint32_t value = 0;
    for (int i = count - 1; i >= 0; --i)
        value = value << 8 | file.at(at + static_cast<std::size_t>(i));
    return value;
}

} // namespace

PictureBytes MakePng(const Raster& raster, const PngMaking& making) {
    const int colours[] = {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB,
                           PNG_COLOR_TYPE_RGB_ALPHA};
    return WritePng(raster, colours[raster.channels - 1], making, {});
}

PictureBytes MakePalettePng(const Raster& indices, const std::vector<std::uint32_t>& colours) {
    return WritePng(indices, PNG_COLOR_TYPE_PALETTE, {}, colours);
}

Raster ParsePng(const PictureBytes& file) {
    Unread unread{file.data(), file.data() + file.size()};
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, FailPng, IgnorePng);
    png_infop info = png_create_info_struct(png);
    png_set_read_fn(png, &unread, TakePng);
    png_read_info(png, info);
    Raster raster{png_get_image_width(png, info),
                  png_get_image_height(png, info),
                  png_get_channels(png, info),
                  png_get_bit_depth(png, info),
                  {}};
    if (raster.bits == 16) png_set_swap(png);
    raster.bytes.resize(png_get_rowbytes(png, info) * raster.height);
    auto rows = RowsOf(raster);
    png_read_image(png, rows.data());
    png_read_end(png, nullptr);
    png_destroy_read_struct(&png, &info, nullptr);
    return raster;
}

Chunks PngChunksOf(const PictureBytes& file) {
    Chunks chunks;
    for (std::size_t at = 8; at + 12 <= file.size();) {
        std::uint32_t length = 0;
        for (int i = 0; i < 4; ++i) length = length << 8 | file[at + static_cast<std::size_t>(i)];
        const std::string type(file.begin() + static_cast<std::ptrdiff_t>(at + 4),
                               file.begin() + static_cast<std::ptrdiff_t>(at + 8));
        if (type != "IHDR" && type != "IDAT" && type != "IEND" && type != "PLTE")
            chunks.emplace_back(
                type, std::string(file.begin() + static_cast<std::ptrdiff_t>(at + 8),
                                  file.begin() + static_cast<std::ptrdiff_t>(at + 8 + length)));
        at += 12 + length;
    }
    return chunks;
}

PictureBytes MakeTiff(const Raster& raster, const TiffMaking& making) {
    MemoryFile file;
    TIFF* tiff = OpenTiff(file, making.bigEndian ? "wbm" : "wlm");
    for (int page = 0; page < making.pages; ++page) {
        SetTags(tiff, raster, making);
        if (making.tiled) {
            WriteTiles(tiff, raster);
        } else {
            TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 16);
            Raster copy = raster; // the library may change what it writes
            auto rows = RowsOf(copy);
            for (unsigned y = 0; y < raster.height; ++y)
                if (TIFFWriteScanline(tiff, rows[y], y, 0) != 1) Fail("row");
        }
        TIFFWriteDirectory(tiff);
    }
    TIFFClose(tiff);
    return file.bytes;
}

ReadTiff ParseTiff(const PictureBytes& bytes) {
    MemoryFile file{bytes};
    TIFF* tiff = OpenTiff(file, "rm");
    ReadTiff read;
    std::uint16_t channels = 0, bits = 0, value = 0, *kinds = nullptr;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &read.raster.width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &read.raster.height);
    TIFFGetField(tiff, TIFFTAG_SAMPLESPERPIXEL, &channels);
    TIFFGetField(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
    read.raster.channels = channels;
    read.raster.bits = bits;
    if (TIFFGetField(tiff, TIFFTAG_COMPRESSION, &value)) read.compression = value;
    if (TIFFGetField(tiff, TIFFTAG_ORIENTATION, &value)) read.orientation = value;
    if (TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &value)) read.photometric = value;
    if (TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &value, &kinds) && value) read.extra = kinds[0];
    read.profile = TextOf(tiff, TIFFTAG_ICCPROFILE);
    read.xmp = TextOf(tiff, TIFFTAG_XMLPACKET);
    char* artist = nullptr;
    if (TIFFGetField(tiff, TIFFTAG_ARTIST, &artist)) read.artist = artist;
    read.bigEndian = TIFFIsBigEndian(tiff) != 0;
    if (read.compression == COMPRESSION_JPEG)
        TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    read.raster.bytes.resize(static_cast<std::size_t>(read.raster.width) * channels * bits / 8 *
                             read.raster.height);
    auto rows = RowsOf(read.raster);
    for (unsigned y = 0; y < read.raster.height; ++y)
        if (TIFFReadScanline(tiff, rows[y], y, 0) != 1) Fail("row");
    TIFFClose(tiff);
    return read;
}

PictureBytes MakeWebp(const Raster& raster, const WebpMaking& making) {
    std::uint8_t* memory = nullptr;
    const int width = static_cast<int>(raster.width), height = static_cast<int>(raster.height);
    const int stride = width * static_cast<int>(raster.channels);
    const bool alpha = raster.channels == 4;
    const auto* pixels = raster.bytes.data();
    const std::size_t size =
        making.lossless ? alpha ? WebPEncodeLosslessRGBA(pixels, width, height, stride, &memory)
                                : WebPEncodeLosslessRGB(pixels, width, height, stride, &memory)
        : alpha ? WebPEncodeRGBA(pixels, width, height, stride, 90, &memory)
                        : WebPEncodeRGB(pixels, width, height, stride, 90, &memory);
    PictureBytes file(memory, memory + size);
    WebPFree(memory);
    if (making.frames == 1 && making.profile.empty() && making.exif.empty()) return file;
    const WebPData image{file.data(), file.size()};
    WebPMux* mux = making.frames == 1 ? WebPMuxCreate(&image, 1) : WebPMuxNew();
    for (int i = 0; making.frames > 1 && i < making.frames; ++i) {
        WebPMuxFrameInfo frame{};
        frame.bitstream = image;
        frame.id = WEBP_CHUNK_ANMF;
        frame.duration = 100;
        if (WebPMuxPushFrame(mux, &frame, 1) != WEBP_MUX_OK) Fail("frame");
    }
    const WebPMuxAnimParams animation{0xFFFFFFFF, 0};
    if (making.frames > 1 && WebPMuxSetAnimationParams(mux, &animation) != WEBP_MUX_OK)
        Fail("params");
    const WebPData icc{reinterpret_cast<const std::uint8_t*>(making.profile.data()),
                       making.profile.size()};
    const WebPData exif{reinterpret_cast<const std::uint8_t*>(making.exif.data()),
                        making.exif.size()};
    if (icc.size) WebPMuxSetChunk(mux, "ICCP", &icc, 1);
    if (exif.size) WebPMuxSetChunk(mux, "EXIF", &exif, 1);
    WebPData whole{};
    const int assembled = WebPMuxAssemble(mux, &whole);
    if (assembled != WEBP_MUX_OK) Fail(std::to_string(assembled).c_str());
    PictureBytes result(whole.bytes, whole.bytes + whole.size);
    WebPDataClear(&whole);
    WebPMuxDelete(mux);
    return result;
}

ReadWebp ParseWebp(const PictureBytes& file) {
    ReadWebp read;
    WebPBitstreamFeatures features;
    if (WebPGetFeatures(file.data(), file.size(), &features) != VP8_STATUS_OK) Fail("features");
    read.lossless = features.format == 2;
    read.raster = {static_cast<unsigned>(features.width),
                   static_cast<unsigned>(features.height),
                   features.has_alpha ? 4u : 3u,
                   8,
                   {}};
    read.raster.bytes.resize(static_cast<std::size_t>(read.raster.width) * read.raster.height *
                             read.raster.channels);
    const int stride = static_cast<int>(read.raster.width * read.raster.channels);
    auto decode = features.has_alpha ? WebPDecodeRGBAInto : WebPDecodeRGBInto;
    if (!decode(file.data(), file.size(), read.raster.bytes.data(), read.raster.bytes.size(),
                stride))
        Fail("pixels");
    const WebPData data{file.data(), file.size()};
    WebPMux* mux = WebPMuxCreate(&data, 0);
    WebPData found{};
    if (WebPMuxGetChunk(mux, "ICCP", &found) == WEBP_MUX_OK)
        read.profile.assign(found.bytes, found.bytes + found.size);
    if (WebPMuxGetChunk(mux, "EXIF", &found) == WEBP_MUX_OK)
        read.exif.assign(found.bytes, found.bytes + found.size);
    WebPMuxDelete(mux);
    return read;
}

PictureBytes MakeBmp(const Raster& raster, const BmpMaking& making) {
    const unsigned channels = raster.channels;
    const std::size_t stride = (raster.width * channels + 3) / 4 * 4;
    const unsigned palette = channels == 1 ? 1024 : 0;
    const unsigned pixels = 14 + 124 + palette,
                   image = static_cast<unsigned>(stride * raster.height);
    PictureBytes file{'B', 'M'};
    Put(file, pixels + image + static_cast<unsigned>(making.profile.size()), 4);
    Put(file, 0, 4);
    Put(file, pixels, 4);
    Put(file, 124, 4);
    Put(file, raster.width, 4);
    Put(file, making.topDown ? 0u - raster.height : raster.height, 4);
    Put(file, 1, 2);
    Put(file, channels * 8, 2);
    Put(file, making.alpha ? 3 : 0, 4);
    Put(file, image, 4);
    Put(file, 3000, 4);
    Put(file, 3000, 4);
    Put(file, 0, 4);
    Put(file, 0, 4);
    for (unsigned mask : {0xFF0000u, 0xFF00u, 0xFFu, making.alpha ? 0xFF000000u : 0u})
        Put(file, mask, 4);
    Put(file, making.profile.empty() ? 0x73524742 : 0x4D424544, 4);
    for (int i = 0; i < 13; ++i) Put(file, 0, 4);
    Put(file, making.profile.empty() ? 0 : 124 + palette + image, 4);
    Put(file, static_cast<unsigned>(making.profile.size()), 4);
    Put(file, 0, 4);
    for (unsigned i = 0; palette && i < 256; ++i) Put(file, i * 0x10101, 4);
    for (unsigned y = 0; y < raster.height; ++y) {
        const auto* row =
            &raster.bytes[(making.topDown ? y : raster.height - 1 - y) * raster.width * channels];
        file.insert(file.end(), row, row + raster.width * channels);
        file.resize(file.size() + stride - raster.width * channels);
    }
    file.insert(file.end(), making.profile.begin(), making.profile.end());
    return file;
}

ReadBmp ParseBmp(const PictureBytes& file) {
    ReadBmp read;
    const auto height = static_cast<std::int32_t>(Take(file, 22, 4));
    read.topDown = height < 0;
    read.raster = {
        Take(file, 18, 4), static_cast<unsigned>(std::abs(height)), Take(file, 28, 2) / 8, 8, {}};
    if (Take(file, 2, 4) != file.size()) Fail("size");
    const std::size_t used = static_cast<std::size_t>(read.raster.width) * read.raster.channels;
    const std::size_t stride = (used + 3) / 4 * 4, pixels = Take(file, 10, 4);
    for (unsigned y = 0; y < read.raster.height; ++y) {
        const std::size_t at = pixels + (read.topDown ? y : read.raster.height - 1 - y) * stride;
        read.raster.bytes.insert(read.raster.bytes.end(),
                                 file.begin() + static_cast<std::ptrdiff_t>(at),
                                 file.begin() + static_cast<std::ptrdiff_t>(at + used));
    }
    if (Take(file, 14, 4) == 124 && Take(file, 70, 4) == 0x4D424544)
        for (std::size_t i = 0; i < Take(file, 130, 4); ++i)
            read.profile += static_cast<char>(file.at(14 + Take(file, 126, 4) + i));
    return read;
}

} // namespace obtest
