// The PNG library as it was built for this system: what it writes it reads, 16 bits deep as well,
// and a damaged file is an exception out of its error callback.
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include <png.h>

namespace {
using Bytes = std::vector<unsigned char>;

void Throw(png_structp, png_const_charp text) { throw std::runtime_error(text); }

void Ignore(png_structp, png_const_charp) {}

void Append(png_structp png, png_bytep bytes, size_t count) {
    auto& file = *static_cast<Bytes*>(png_get_io_ptr(png));
    file.insert(file.end(), bytes, bytes + count);
}

struct Unread {
    const unsigned char *next, *end;
};

void Take(png_structp png, png_bytep bytes, size_t count) {
    auto& unread = *static_cast<Unread*>(png_get_io_ptr(png));
    if (static_cast<size_t>(unread.end - unread.next) < count)
        png_error(png, "the file ends early");
    memcpy(bytes, unread.next, count);
    unread.next += count;
}

void NoFlush(png_structp) {}

struct Writer {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, Throw, Ignore);
    png_infop info = png_create_info_struct(png);
    ~Writer() { png_destroy_write_struct(&png, &info); }
};

struct Reader {
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, Throw, Ignore);
    png_infop info = png_create_info_struct(png);
    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
};

Bytes Encode(const Bytes& pixels, unsigned width, unsigned height, int depth, int colour,
             size_t row) {
    Bytes file;
    Writer writer;
    png_set_write_fn(writer.png, &file, Append, NoFlush);
    png_set_IHDR(writer.png, writer.info, width, height, depth, colour, PNG_INTERLACE_NONE, 0, 0);
    png_write_info(writer.png, writer.info);
    for (unsigned y = 0; y < height; ++y) png_write_row(writer.png, &pixels[y * row]);
    png_write_end(writer.png, writer.info);
    return file;
}

Bytes Decode(const Bytes& file) {
    Reader reader;
    Unread unread{file.data(), file.data() + file.size()};
    png_set_read_fn(reader.png, &unread, Take);
    png_read_info(reader.png, reader.info);
    const size_t row = png_get_rowbytes(reader.png, reader.info);
    const size_t height = png_get_image_height(reader.png, reader.info);
    Bytes pixels(row * height);
    for (size_t y = 0; y < height; ++y) png_read_row(reader.png, &pixels[y * row], nullptr);
    png_read_end(reader.png, nullptr);
    return pixels;
}

Bytes Noise(size_t size) {
    Bytes bytes(size);
    unsigned state = 1;
    for (auto& byte : bytes)
        byte = static_cast<unsigned char>((state = state * 1664525 + 1013904223) >> 24);
    return bytes;
}

TEST(PngLibrary, ReadsWhatItWroteInEachDepth) {
    const auto shallow = Noise(30 * 20 * 4), deep = Noise(30 * 20 * 8);
    EXPECT_EQ(Decode(Encode(shallow, 30, 20, 8, PNG_COLOR_TYPE_RGB_ALPHA, 120)), shallow);
    EXPECT_EQ(Decode(Encode(deep, 30, 20, 16, PNG_COLOR_TYPE_RGB_ALPHA, 240)), deep);
}

TEST(PngLibrary, ReportsADamagedFileByAnException) {
    const auto file = Encode(Noise(300), 10, 10, 8, PNG_COLOR_TYPE_RGB, 30);
    EXPECT_THROW(Decode({}), std::runtime_error);
    EXPECT_THROW(Decode(Bytes(file.begin(), file.end() - 40)), std::runtime_error);
    for (size_t i = 0; i < file.size(); ++i) {
        auto damaged = file;
        damaged[i] ^= 0xFF;
        try {
            Decode(damaged);
        } catch (const std::runtime_error&) {
        }
    }
}
} // namespace
