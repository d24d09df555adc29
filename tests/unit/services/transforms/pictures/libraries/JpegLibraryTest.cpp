// The JPEG library as it was built for this system: what it writes it reads, with its SIMD code at
// work, and a damaged file is an exception out of its error callback.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include <jpeglib.h>

// The library's own questions, which its headers don't declare: is there code for this processor?
extern "C" int jsimd_can_idct_islow(void);
extern "C" int jsimd_can_fdct_islow(void);

namespace {
using Bytes = std::vector<unsigned char>;

void Throw(j_common_ptr info) {
    throw std::runtime_error(info->err->jpeg_message_table[info->err->msg_code]);
}

void Ignore(j_common_ptr, int) {}

jpeg_error_mgr Errors() {
    jpeg_error_mgr errors{};
    jpeg_std_error(&errors);
    errors.error_exit = Throw;
    errors.emit_message = Ignore;
    return errors;
}

Bytes Gradient(unsigned width, unsigned height) {
    Bytes pixels(width * height);
    for (unsigned y = 0; y < height; ++y)
        for (unsigned x = 0; x < width; ++x)
            pixels[y * width + x] =
                static_cast<unsigned char>((x + y) * 255 / (width + height - 2));
    return pixels;
}

Bytes Encode(const Bytes& pixels, unsigned width, unsigned height, int components = 1) {
    auto errors = Errors();
    jpeg_compress_struct jpeg{};
    jpeg.err = &errors;
    jpeg_create_compress(&jpeg);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &memory, &size);
    jpeg.image_width = width;
    jpeg.image_height = height;
    jpeg.input_components = components;
    jpeg.in_color_space = components == 1 ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 90, TRUE);
    jpeg_start_compress(&jpeg, TRUE);
    for (unsigned y = 0; y < height; ++y) {
        JSAMPROW row = const_cast<JSAMPROW>(&pixels[static_cast<size_t>(y) * width * components]);
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    Bytes file(memory, memory + size);
    free(memory);
    return file;
}

struct Reader : jpeg_decompress_struct {
    Reader() : jpeg_decompress_struct{} {
        err = &errors;
        jpeg_create_decompress(this);
    }
    ~Reader() { jpeg_destroy_decompress(this); }
    jpeg_error_mgr errors = Errors();
};

Bytes Decode(const Bytes& file) {
    Reader jpeg;
    jpeg_mem_src(&jpeg, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&jpeg, TRUE);
    jpeg_start_decompress(&jpeg);
    const size_t rowSize = static_cast<size_t>(jpeg.output_width) * jpeg.output_components;
    Bytes pixels(rowSize * jpeg.output_height);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = &pixels[jpeg.output_scanline * rowSize];
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_decompress(&jpeg);
    return pixels;
}

// Colours that change from pixel to pixel, a little.
Bytes Speckles(unsigned width, unsigned height) {
    Bytes pixels(static_cast<size_t>(width) * height * 3);
    unsigned state = 5;
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<unsigned char>(i / 3 % width * 200 / width +
                                               ((state = state * 1664525 + 1013904223) >> 28));
    return pixels;
}

TEST(JpegLibrary, ReadsWhatItWrote) {
    const auto pixels = Gradient(123, 77);
    const auto again = Decode(Encode(pixels, 123, 77));
    ASSERT_EQ(again.size(), pixels.size());
    for (size_t i = 0; i < pixels.size(); ++i) ASSERT_NEAR(again[i], pixels[i], 6) << i;
}

TEST(JpegLibrary, TransformsWithTheProcessorsVectorUnits) {
    EXPECT_NE(jsimd_can_idct_islow(), 0);
    EXPECT_NE(jsimd_can_fdct_islow(), 0);
}

TEST(JpegLibrary, ReadsAndWritesColours) {
    const auto pixels = Speckles(2000, 1500);
    const auto begin = std::chrono::steady_clock::now();
    const auto again = Decode(Encode(pixels, 2000, 1500, 3));
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - begin;
    printf("3 megapixels written and read in %.1f ms\n", taken.count());
    ASSERT_EQ(again.size(), pixels.size());
    double difference = 0;
    for (size_t i = 0; i < pixels.size(); ++i) difference += std::abs(again[i] - pixels[i]);
    EXPECT_LT(difference / static_cast<double>(pixels.size()), 8);
}

TEST(JpegLibrary, ReportsADamagedFileByAnException) {
    auto file = Encode(Gradient(64, 64), 64, 64);
    EXPECT_THROW(Decode(Bytes(100, 0xFF)), std::runtime_error);
    EXPECT_THROW(Decode({}), std::runtime_error);
    for (size_t i = 2; i < file.size(); ++i) {
        auto damaged = file;
        damaged[i] ^= 0xFF;
        try {
            Decode(damaged);
        } catch (const std::exception&) {
        }
    }
}
} // namespace
