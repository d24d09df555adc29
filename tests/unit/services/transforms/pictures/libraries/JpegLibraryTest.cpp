// The JPEG library as it was built for this system: what it writes it reads, with its SIMD code at
// work, and a damaged file is an exception out of its error callback.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <thread>
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

Bytes Encode(const Bytes& pixels, unsigned width, unsigned height) {
    auto errors = Errors();
    jpeg_compress_struct jpeg{};
    jpeg.err = &errors;
    jpeg_create_compress(&jpeg);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &memory, &size);
    jpeg.image_width = width;
    jpeg.image_height = height;
    jpeg.input_components = 1;
    jpeg.in_color_space = JCS_GRAYSCALE;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 90, TRUE);
    jpeg_start_compress(&jpeg, TRUE);
    for (unsigned y = 0; y < height; ++y) {
        JSAMPROW row = const_cast<JSAMPROW>(&pixels[y * width]);
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
    Bytes pixels(static_cast<size_t>(jpeg.output_width) * jpeg.output_height);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = &pixels[static_cast<size_t>(jpeg.output_scanline) * jpeg.output_width];
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_decompress(&jpeg);
    return pixels;
}

struct Coded {
    Bytes file, pixels;
    double milliseconds;
};

// The library asks the environment once in each thread.
Coded CodeInAThreadOfItsOwn(const char* withoutSimd) {
    const auto pixels = Gradient(2000, 1500);
    Coded coded;
    _putenv_s("JSIMD_FORCENONE", withoutSimd);
    std::thread([&] {
        const auto begin = std::chrono::steady_clock::now();
        coded.file = Encode(pixels, 2000, 1500);
        coded.pixels = Decode(coded.file);
        const std::chrono::duration<double, std::milli> taken =
            std::chrono::steady_clock::now() - begin;
        coded.milliseconds = taken.count();
    }).join();
    _putenv_s("JSIMD_FORCENONE", "");
    return coded;
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

TEST(JpegLibrary, CodesTheSameBytesWithItsSimdCodeAndWithout) {
    const auto with = CodeInAThreadOfItsOwn("");
    const auto without = CodeInAThreadOfItsOwn("1");
    printf("3 megapixels written and read: %.1f ms with SIMD, %.1f ms without\n", with.milliseconds,
           without.milliseconds);
    EXPECT_EQ(with.file, without.file);
    EXPECT_EQ(with.pixels, without.pixels);
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
