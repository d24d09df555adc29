// GIF pictures in PDFs: indices and their palette, and one colour that nobody sees.
#include <gtest/gtest.h>

#include "tests/unit/services/transforms/topdf/PdfReading.h"

namespace {

using namespace obtest;
using namespace transforms;

std::string Little(unsigned value) {
    return {static_cast<char>(value), static_cast<char>(value >> 8)};
}

// Codes of changing width: clears before the width would change, so that each string is one index.
std::string Coded(const std::string& indices, unsigned width) {
    std::string bytes, pieces(1, static_cast<char>(width));
    unsigned bits = 0, count = 0;
    const auto put = [&](unsigned code) {
        bits |= code << count;
        for (count += width + 1; count >= 8; count -= 8, bits >>= 8)
            bytes += static_cast<char>(bits);
    };
    const std::size_t most = (1u << width) - 2;
    for (std::size_t i = 0; i < indices.size(); ++i) {
        if (i % most == 0) put(1u << width);
        put(static_cast<unsigned char>(indices[i]));
    }
    put((1u << width) + 1);
    if (count) bytes += static_cast<char>(bits);
    for (std::size_t at = 0; at < bytes.size(); at += 255) {
        const std::string piece = bytes.substr(at, 255);
        pieces += static_cast<char>(piece.size()) + piece;
    }
    return pieces + '\0';
}

std::string Image(unsigned width, unsigned height, const std::string& indices,
                  bool isInterlaced = false) {
    return "," + Little(0) + Little(0) + Little(width) + Little(height) +
           (isInterlaced ? '\x40' : '\0') + Coded(indices, 2);
}

const std::string kColours = std::string("\0\0\0\xFF\0\0\0\xFF\0\0\0\xFF", 12);
// Index 3 isn't shown.
const std::string kControl = std::string("\x21\xF9\x04\x01\0\0\x03\0", 8);

PictureBytes Gif(const std::string& blocks, unsigned width = 4, unsigned height = 4) {
    const std::string file = "GIF89a" + Little(width) + Little(height) +
                             std::string("\x81\0\0", 3) + kColours + blocks + ";";
    return {file.begin(), file.end()};
}

const std::string kIndices = std::string("\0\1\2\3\1\1\1\1\2\2\2\2\3\2\1\0", 16);

TEST(GifPdf, KeepsIndicesPaletteAndTheColourThatIsNotShown) {
    const auto page = MakePdf(Gif(kControl + Image(4, 4, kIndices))).Page();
    EXPECT_EQ(page.samples, kIndices);
    EXPECT_TRUE(Has(page.dictionary, "/Indexed /DeviceRGB 3"));
    EXPECT_TRUE(Has(page.dictionary, "/Mask [ 3 3 ]"));
    EXPECT_FALSE(Has(MakePdf(Gif(Image(4, 4, kIndices))).Page().dictionary, "/Mask"));
}

TEST(GifPdf, PutsInterlacedRowsInTheirOrder) {
    // Rows 0, 2, 1, 3 as they are stored: runs from 0 by 8, 4 by 8, 2 by 4, 1 by 2.
    const std::string stored = kIndices.substr(0, 4) + kIndices.substr(8, 4) +
                               kIndices.substr(4, 4) + kIndices.substr(12, 4);
    EXPECT_EQ(MakePdf(Gif(Image(4, 4, stored, true))).Page().samples, kIndices);
}

// A run of one index makes strings of strings, up to twelve bits a code.
TEST(GifPdf, ReadsStringsThatGrow) {
    std::string bytes;
    unsigned bits = 0, count = 0, width = 3, next = 6;
    std::size_t pixels = 0;
    const auto put = [&](unsigned code) {
        bits |= code << count;
        for (count += width; count >= 8; count -= 8, bits >>= 8) bytes += static_cast<char>(bits);
    };
    put(4);
    put(1);
    pixels = 1;
    // Each code is the string that it makes: one longer than the one before.
    for (std::size_t length = 2; length <= 600; ++length) {
        put(next++);
        if (next == (1u << width) && width < 12) ++width;
        pixels += length;
    }
    put(5);
    if (count) bytes += static_cast<char>(bits);
    std::string coded(1, '\2');
    for (std::size_t at = 0; at < bytes.size(); at += 255) {
        const std::string piece = bytes.substr(at, 255);
        coded += static_cast<char>(piece.size()) + piece;
    }
    const unsigned side = 10, rows = static_cast<unsigned>(pixels / side);
    const std::string image =
        "," + Little(0) + Little(0) + Little(side) + Little(rows) + '\0' + coded + '\0';
    EXPECT_EQ(MakePdf(Gif(image)).Page().samples, std::string(side * rows, '\1'));
}

TEST(GifPdf, PassesAnimations) {
    const auto made = MakePdf(Gif(Image(4, 4, kIndices) + Image(4, 4, kIndices)));
    EXPECT_EQ(made.outcome, PictureOutcome::Unchanged);
    EXPECT_TRUE(made.file.empty());
}

TEST(GifPdf, IsDamagedWhereCodesLeadNowhere) {
    EXPECT_EQ(MakePdf(Gif(Image(4, 4, kIndices.substr(0, 9)))).outcome, PictureOutcome::Damaged);
    EXPECT_EQ(MakePdf(Gif(Image(0, 4, ""))).outcome, PictureOutcome::Damaged);
    EXPECT_EQ(MakePdf(Gif("")).outcome, PictureOutcome::Damaged);
    std::string code = Image(4, 4, kIndices);
    code[12] = '\x3C'; // a clear, then a string that there isn't
    EXPECT_EQ(MakePdf(Gif(code)).outcome, PictureOutcome::Damaged);
}

} // namespace
