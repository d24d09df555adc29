// The pictures of the dialog toolkit as a module gets them from its own resources.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace {

constexpr int kScales[] = {96, 120, 144, 192, 240, 288, 384, 480};
constexpr int kScaleCount = 8;
constexpr std::uint32_t kAccent = 0xFF1B76C0; // alpha, red, green, blue
constexpr std::uint32_t kWhite = 0xFFFFFFFF;
constexpr std::uint32_t kDark = 0x212121; // without alpha

enum class Outline { Box, Circle, Glyph };

struct PictureSet {
    int firstId;
    int size; // at 96 dpi
    Outline outline;
};

constexpr PictureSet kSets[] = {
    {62024, 13, Outline::Box},    {62032, 13, Outline::Box},    {62040, 13, Outline::Box},
    {62048, 13, Outline::Box},    {62232, 13, Outline::Box},    {62240, 13, Outline::Box},
    {62056, 13, Outline::Circle}, {62064, 13, Outline::Circle}, {62072, 13, Outline::Circle},
    {62080, 13, Outline::Circle}, {62088, 16, Outline::Glyph},  {62096, 8, Outline::Glyph},
    {62104, 8, Outline::Glyph},   {62112, 8, Outline::Glyph},   {62120, 8, Outline::Glyph},
    {62128, 8, Outline::Glyph},   {62136, 8, Outline::Glyph},   {62144, 8, Outline::Glyph},
    {62152, 8, Outline::Glyph},   {62224, 16, Outline::Glyph},  {62248, 16, Outline::Glyph},
    {62256, 16, Outline::Glyph},
};

struct LoadedPicture {
    int width = 0;
    int height = 0;
    int bits = 0;
    std::vector<std::uint32_t> pixels; // alpha, red, green, blue; the top row first

    std::uint32_t At(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
    std::uint32_t AlphaAt(int x, int y) const { return At(x, y) >> 24; }
};

// The picture as LoadImageW gives it, without a conversion: the bits of its section. An empty
// record when the module has no bitmap of this number.
LoadedPicture Load(int id) {
    ObLib::UniqueBitmap bitmap(static_cast<HBITMAP>(LoadImageW(
        GetModuleHandleW(nullptr), MAKEINTRESOURCEW(id), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION)));
    DIBSECTION section = {};
    if (!bitmap || GetObjectW(bitmap.Get(), sizeof section, &section) != sizeof section) {
        return {};
    }
    LoadedPicture picture{
        section.dsBm.bmWidth, section.dsBm.bmHeight, section.dsBm.bmBitsPixel, {}};
    if (picture.bits != 32 || section.dsBm.bmBits == nullptr) {
        return picture;
    }
    const auto* rows = static_cast<const std::uint32_t*>(section.dsBm.bmBits);
    for (int y = picture.height - 1; y >= 0; --y) { // the section begins with the lowest row
        const auto* row = rows + static_cast<std::ptrdiff_t>(y) * picture.width;
        picture.pixels.insert(picture.pixels.end(), row, row + picture.width);
    }
    return picture;
}

TEST(DialogArt, EveryIdIsABitmapOf32BitsInTheSizeOfItsScale) {
    for (const PictureSet& set : kSets) {
        for (int scale = 0; scale < kScaleCount; ++scale) {
            const int id = set.firstId + scale;
            const LoadedPicture picture = Load(id);
            const int size = MulDiv(set.size, kScales[scale], 96);
            EXPECT_EQ(size, picture.width) << id;
            EXPECT_EQ(size, picture.height) << id;
            EXPECT_EQ(32, picture.bits) << id;
        }
    }
}

TEST(DialogArt, IdsBetweenTheSetsBelongToNoBitmap) {
    for (const int id : {62023, 62160, 62223, 62264}) {
        EXPECT_EQ(0, Load(id).width) << id;
    }
}

TEST(DialogArt, CornersAreTransparentButForTheSmallBoxesRoundOnes) {
    for (const PictureSet& set : kSets) {
        for (int scale = 0; scale < kScaleCount; ++scale) {
            const LoadedPicture picture = Load(set.firstId + scale);
            ASSERT_FALSE(picture.pixels.empty()) << set.firstId + scale;
            const int last = picture.width - 1;
            // A corner's radius is 2 pixels at 96 dpi, so that its outermost pixel is half covered.
            const std::uint32_t most = set.outline == Outline::Box ? (scale == 0 ? 140u : 20u) : 0u;
            for (const auto& [x, y] : {std::pair(0, 0), {last, 0}, {0, last}, {last, last}}) {
                EXPECT_LE(picture.AlphaAt(x, y), most) << set.firstId + scale;
            }
        }
    }
}

TEST(DialogArt, ColoursArentMultipliedByTheirAlpha) {
    for (const int first : {62088, 62096, 62112, 62128, 62144, 62224, 62248, 62256}) {
        const LoadedPicture picture = Load(first);
        int pale = 0;
        for (const std::uint32_t pixel : picture.pixels) {
            const std::uint32_t alpha = pixel >> 24;
            if (alpha < 64 || alpha > 192) {
                continue;
            }
            ++pale;
            // A channel that was multiplied by such an alpha would be smaller by 8 at least.
            EXPECT_NEAR(static_cast<int>(kDark & 0xFF), static_cast<int>(pixel & 0xFF), 3) << first;
        }
        EXPECT_GT(pale, first == 62224 ? 3 : 5) << first;
    }
}

TEST(DialogArt, CheckedBoxHasAWhiteMarkOnTheAccentColour) {
    for (int scale = 0; scale < kScaleCount; ++scale) {
        const LoadedPicture picture = Load(62024 + scale);
        ASSERT_FALSE(picture.pixels.empty());
        const int middle = picture.width / 2;
        EXPECT_EQ(kAccent, picture.At(0, middle)) << scale;
        EXPECT_EQ(kAccent, picture.At(middle, 0)) << scale;
        // A check mark: the arm to the right ends higher than the one to the left, and its lowest
        // point is left of the middle.
        std::pair<int, int> left{picture.width, 0}, right{-1, 0}, lowest{0, -1}; // x, y
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x) {
                if (picture.At(x, y) != kWhite) {
                    continue;
                }
                left = x < left.first ? std::pair(x, y) : left;
                right = x > right.first ? std::pair(x, y) : right;
                lowest = {x, y};
            }
        }
        EXPECT_LT(right.second, left.second) << scale;
        EXPECT_LT(left.second, lowest.second) << scale;
        EXPECT_LT(lowest.first, middle) << scale;
    }
}

TEST(DialogArt, ThirdStateAndRadioHaveTheAccentColourInTheMiddleOfAWhiteField) {
    for (const int first : {62232, 62056}) {
        for (int scale = 0; scale < kScaleCount; ++scale) {
            const LoadedPicture picture = Load(first + scale);
            ASSERT_FALSE(picture.pixels.empty());
            const int middle = picture.width / 2;
            EXPECT_EQ(kAccent, picture.At(middle, middle)) << first + scale;
            EXPECT_EQ(kWhite, picture.At(MulDiv(2, kScales[scale], 96), middle)) << first + scale;
        }
    }
}

// The sum of the alphas of a row or a column.
int InkOf(const LoadedPicture& picture, bool row, int at) {
    int ink = 0;
    for (int along = 0; along < picture.width; ++along) {
        ink += static_cast<int>(row ? picture.AlphaAt(along, at) : picture.AlphaAt(at, along));
    }
    return ink;
}

// How many pixels of the middle row or column are before the first one with ink.
int GapBefore(const LoadedPicture& picture, bool row) {
    const int middle = picture.width / 2;
    int gap = 0;
    while (gap < picture.width &&
           (row ? picture.AlphaAt(gap, middle) : picture.AlphaAt(middle, gap)) == 0) {
        ++gap;
    }
    return gap;
}

TEST(DialogArt, ArrowsPointTheWayOfTheirNames) {
    for (int scale = 0; scale < kScaleCount; ++scale) {
        const LoadedPicture down = Load(62096 + scale);
        const LoadedPicture left = Load(62112 + scale);
        const LoadedPicture right = Load(62128 + scale);
        const LoadedPicture up = Load(62144 + scale);
        ASSERT_FALSE(down.pixels.empty() || left.pixels.empty() || right.pixels.empty() ||
                     up.pixels.empty());
        EXPECT_GT(GapBefore(down, false), GapBefore(up, false)) << scale;
        EXPECT_GT(GapBefore(right, true), GapBefore(left, true)) << scale;
        for (int at = 0; at < down.width; ++at) {
            const int mirrored = down.width - 1 - at;
            EXPECT_EQ(InkOf(down, true, at), InkOf(up, true, mirrored)) << scale;
            EXPECT_EQ(InkOf(down, true, at), InkOf(right, false, at)) << scale;
            EXPECT_EQ(InkOf(down, true, at), InkOf(left, false, mirrored)) << scale;
        }
    }
}

TEST(DialogArt, CrossedEyeHasInkAboveTheLidsOfTheOpenOne) {
    for (int scale = 0; scale < kScaleCount; ++scale) {
        const LoadedPicture crossed = Load(62248 + scale);
        const LoadedPicture open = Load(62256 + scale);
        ASSERT_FALSE(crossed.pixels.empty() || open.pixels.empty());
        const int row = MulDiv(2, kScales[scale], 96); // one pixel above the lids at 96 dpi
        EXPECT_EQ(0, InkOf(open, true, row)) << scale;
        EXPECT_GT(InkOf(crossed, true, row), 0) << scale;
    }
}

} // namespace
