// What is done to the pixels of a picture before it is drawn.
#include "ObLibX/src/dialog/Pixels.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace ObLibX;

TEST(PixelsTest, AreMultipliedByTheirAlpha) {
    std::vector<Pixel> pixels{0xFF102030, 0x00FFFFFF, 0x80FF8001, 0x01FFFFFF, 0xFE010203};
    Premultiply(pixels);
    const std::vector<Pixel> expected{0xFF102030, 0x00000000, 0x80804000, 0x01010101, 0xFE000102};
    EXPECT_EQ(expected, pixels);
    Premultiply({});
}

struct AlphaRow {
    std::uint32_t before;
    std::uint32_t after;
};

TEST(PixelsTest, GetOneColourAndAnAlphaInFewStepsForHighContrast) {
    constexpr AlphaRow kRows[] = {{0, 0},     {20, 0},    {21, 192},  {192, 192},
                                  {193, 224}, {224, 224}, {225, 225}, {255, 255}};
    for (const AlphaRow& row : kRows) {
        Pixel pixel = row.before << 24 | 0x123456;
        Recolor({&pixel, 1}, 0x00BBCC01);
        EXPECT_EQ(row.after << 24 | 0x01CCBB, pixel) << row.before;
    }
}

TEST(PixelsTest, GetOneColourAndKeepTheirAlphaForATint) {
    std::vector<Pixel> pixels{0xFF123456, 0x00123456, 0x14000000, 0xC1FFFFFF};
    Tint(pixels, 0x00BBCC01);
    const std::vector<Pixel> expected{0xFF01CCBB, 0x0001CCBB, 0x1401CCBB, 0xC101CCBB};
    EXPECT_EQ(expected, pixels);
    Tint({}, 0);
}

} // namespace
