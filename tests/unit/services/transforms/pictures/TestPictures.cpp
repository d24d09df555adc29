// Pictures for tests.
#include "tests/unit/services/transforms/pictures/TestPictures.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include <jpeglib.h>

namespace obtest {
namespace {

void Throw(j_common_ptr info) { throw std::runtime_error(std::to_string(info->err->msg_code)); }
void Ignore(j_common_ptr, int) {}

struct Errors : jpeg_error_mgr {
    Errors() : jpeg_error_mgr{} {
        jpeg_std_error(this);
        error_exit = Throw;
        emit_message = Ignore;
    }
};

std::uint32_t Mixed(std::uint32_t x, std::uint32_t y, std::uint32_t seed) {
    std::uint32_t h = x * 0x9E3779B1u ^ y * 0x85EBCA77u ^ seed * 0xC2B2AE3Du;
    h = (h ^ h >> 15) * 0x2C1B3C6Du;
    return h ^ h >> 13;
}

double Shape(double x, double y, unsigned channel, unsigned seed) {
    const double wave =
        std::sin(x * (5 + seed % 7) + channel) * std::cos(y * (4 + seed % 5) - channel);
    const double disc = std::hypot(x - 0.5, y - 0.4) < 0.25 ? 40 : 0;
    return 120 + 70 * wave + disc;
}

J_COLOR_SPACE SpaceOf(unsigned channels) {
    return channels == 1 ? JCS_GRAYSCALE : channels == 3 ? JCS_RGB : JCS_CMYK;
}

} // namespace

unsigned Raster::At(unsigned x, unsigned y, unsigned channel) const {
    const std::size_t place = (static_cast<std::size_t>(y) * width + x) * channels + channel;
    if (bits == 8) return bytes[place];
    std::uint16_t value;
    std::memcpy(&value, &bytes[place * 2], 2);
    return value;
}

Raster Photo(unsigned width, unsigned height, unsigned channels, unsigned bits, unsigned seed,
             unsigned grain) {
    Raster raster{width, height, channels, bits, {}};
    raster.bytes.reserve(static_cast<std::size_t>(width) * height * channels * bits / 8);
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) {
            for (unsigned c = 0; c < channels; ++c) {
                double value = Shape(1.0 * x / width, 1.0 * y / height, c, seed);
                if (grain) value += Mixed(x, y, seed + c) % grain;
                if (channels % 2 == 0 && c + 1 == channels) value = 255.0 * x / width; // alpha
                const auto sample = static_cast<std::uint32_t>(std::fmin(std::fmax(value, 0), 255) *
                                                               (bits == 8 ? 1 : 257));
                raster.bytes.push_back(static_cast<std::uint8_t>(sample));
                if (bits == 16) raster.bytes.push_back(static_cast<std::uint8_t>(sample >> 8));
            }
        }
    }
    return raster;
}

Raster Averaged(const Raster& raster, unsigned width, unsigned height) {
    Raster result{width, height, raster.channels, raster.bits, {}};
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) {
            for (unsigned c = 0; c < raster.channels; ++c) {
                double sum = 0, count = 0;
                for (unsigned v = y * raster.height / height; v < (y + 1) * raster.height / height;
                     ++v)
                    for (unsigned u = x * raster.width / width; u < (x + 1) * raster.width / width;
                         ++u, ++count)
                        sum += raster.At(u, v, c);
                const auto value = static_cast<unsigned>(sum / std::fmax(count, 1) + 0.5);
                result.bytes.push_back(static_cast<std::uint8_t>(value));
                if (raster.bits == 16)
                    result.bytes.push_back(static_cast<std::uint8_t>(value >> 8));
            }
        }
    }
    return result;
}

double Difference(const Raster& one, const Raster& other) {
    if (one.width != other.width || one.height != other.height || one.channels != other.channels)
        return 1e9;
    double sum = 0, count = 0;
    for (unsigned y = 0; y < one.height; ++y)
        for (unsigned x = 0; x < one.width; ++x)
            for (unsigned c = 0; c < one.channels; ++c, ++count) {
                const double a = one.At(x, y, c) / (one.bits == 16 ? 257.0 : 1);
                const double b = other.At(x, y, c) / (other.bits == 16 ? 257.0 : 1);
                sum += (a - b) * (a - b);
            }
    return std::sqrt(sum / std::fmax(count, 1));
}

PictureBytes MakeJpeg(const Raster& raster, const JpegMaking& making) {
    const std::size_t stride = std::size_t{raster.width} * raster.channels;
    return MakeJpeg(
        {raster.width, raster.height, raster.channels},
        [&](unsigned y) { return raster.bytes.data() + y * stride; }, making);
}

PictureBytes MakeJpeg(const PictureShape& shape,
                      const std::function<const std::uint8_t*(unsigned y)>& row,
                      const JpegMaking& making) {
    Errors errors;
    jpeg_compress_struct jpeg{};
    jpeg.err = &errors;
    jpeg_create_compress(&jpeg);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &memory, &size);
    jpeg.image_width = shape.width;
    jpeg.image_height = shape.height;
    jpeg.input_components = static_cast<int>(shape.channels);
    jpeg.in_color_space = SpaceOf(shape.channels);
    jpeg_set_defaults(&jpeg);
    if (making.adobe) jpeg_set_colorspace(&jpeg, shape.channels == 3 ? JCS_RGB : JCS_YCCK);
    jpeg_set_quality(&jpeg, making.quality, TRUE);
    if (making.progressive) jpeg_simple_progression(&jpeg);
    jpeg.comp_info[0].h_samp_factor = shape.channels == 1 ? 1 : making.across;
    jpeg.comp_info[0].v_samp_factor = shape.channels == 1 ? 1 : making.down;
    jpeg_start_compress(&jpeg, TRUE);
    for (const auto& [code, text] : making.markers)
        jpeg_write_marker(&jpeg, code, reinterpret_cast<const JOCTET*>(text.data()),
                          static_cast<unsigned>(text.size()));
    while (jpeg.next_scanline < jpeg.image_height) {
        auto samples = const_cast<JSAMPROW>(row(jpeg.next_scanline));
        jpeg_write_scanlines(&jpeg, &samples, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    PictureBytes file(memory, memory + size);
    free(memory);
    return file;
}

ReadJpeg ParseJpeg(const PictureBytes& file) {
    Errors errors;
    struct Reader : jpeg_decompress_struct {
        ~Reader() { jpeg_destroy_decompress(this); }
    } jpeg{};
    jpeg.err = &errors;
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, file.data(), static_cast<unsigned long>(file.size()));
    for (int i = 0; i < 16; ++i) jpeg_save_markers(&jpeg, JPEG_APP0 + i, 0xFFFF);
    jpeg_save_markers(&jpeg, JPEG_COM, 0xFFFF);
    jpeg_read_header(&jpeg, TRUE);
    ReadJpeg read;
    read.isCmyk = jpeg.num_components == 4;
    read.sawAdobe = jpeg.saw_Adobe_marker;
    read.across = jpeg.comp_info[0].h_samp_factor;
    read.down = jpeg.comp_info[0].v_samp_factor;
    for (auto* marker = jpeg.marker_list; marker; marker = marker->next)
        read.markers.emplace_back(marker->marker,
                                  std::string(marker->data, marker->data + marker->data_length));
    jpeg_start_decompress(&jpeg);
    for (int i = 0; i < 64; ++i) read.table[i] = jpeg.quant_tbl_ptrs[0]->quantval[i];
    read.raster = {jpeg.output_width,
                   jpeg.output_height,
                   static_cast<unsigned>(jpeg.output_components),
                   8,
                   {}};
    read.raster.bytes.resize(static_cast<std::size_t>(jpeg.output_width) * jpeg.output_height *
                             jpeg.output_components);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = &read.raster.bytes[static_cast<std::size_t>(jpeg.output_scanline) *
                                          jpeg.output_width * jpeg.output_components];
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_decompress(&jpeg);
    return read;
}

namespace {

std::string Number(unsigned value, int bytes) {
    std::string text;
    for (int i = bytes - 1; i >= 0; --i) text += static_cast<char>(value >> (8 * i));
    return text;
}

std::string Entry(unsigned tag, unsigned type, unsigned value) {
    return Number(tag, 2) + Number(type, 2) + Number(1, 4) +
           (type == 3 ? Number(value, 2) + Number(0, 2) : Number(value, 4));
}

} // namespace

std::string ExifOf(unsigned width, unsigned height) {
    const std::string first =
        Number(2, 2) + Entry(0x0112, 3, 6) + Entry(0x8769, 4, 38) + Number(0, 4);
    const std::string second =
        Number(2, 2) + Entry(0xA002, 4, width) + Entry(0xA003, 3, height) + Number(0, 4);
    return std::string("Exif\0\0", 6) + "MM" + Number(42, 2) + Number(8, 4) + first + second;
}

std::string ProfileMarker(const std::string& profile) {
    return std::string("ICC_PROFILE\0\1\1", 14) + profile;
}

} // namespace obtest
