// Watermarks of text, drawn with the fonts of the machine.
#include "services/transforms/watermark/TextStamp.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>

#include "services/transforms/pictures/StampPicture.h"
#include "tests/support/ProcessResources.h"
#include "tests/unit/services/transforms/pictures/TestRasters.h"

namespace {

using namespace transforms;

constexpr WatermarkLook kStrong{WatermarkPlace::BottomRight, 100};

PlacedStamp Drawn(const std::wstring& text, PictureSize shown,
                  const WatermarkLook& look = kStrong) {
    return TextStamp(text, look, Letters::White).For(shown);
}

// Pixels that are at least as light and as opaque.
std::size_t Count(const PlacedStamp& stamp, int light, int opaque) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < stamp.pixels.size(); i += 4)
        count += stamp.pixels[i] >= light && stamp.pixels[i + 3] >= opaque;
    return count;
}

void ExpectWithin(const PlacedStamp& stamp, PictureSize shown) {
    EXPECT_EQ(stamp.pixels.size(), std::size_t{stamp.size.width} * stamp.size.height * 4);
    EXPECT_LE(stamp.left + stamp.size.width, shown.width);
    EXPECT_LE(stamp.top + stamp.size.height, shown.height);
}

TEST(TextStamp, HasWhiteLettersWithADarkEdge) {
    const PictureSize shown{1200, 900};
    const PlacedStamp stamp = Drawn(L"Ann Example", shown);
    ExpectWithin(stamp, shown);
    const std::size_t all = stamp.pixels.size() / 4;
    const std::size_t letters = Count(stamp, 250, 250);
    EXPECT_GT(letters, all / 20);
    EXPECT_LT(letters, all / 2);
    std::size_t dark = 0, clear = 0;
    for (std::size_t i = 0; i < stamp.pixels.size(); i += 4) {
        dark += stamp.pixels[i] < 10 && stamp.pixels[i + 3] > 100;
        clear += stamp.pixels[i + 3] == 0;
    }
    EXPECT_GT(dark, all / 50);
    EXPECT_GT(clear, all / 20);
    EXPECT_NEAR(stamp.size.height, 900.0 / 24 * 1.35, 12); // one line
}

TEST(TextStamp, HasBlackLettersWithALightEdge) {
    const PlacedStamp white = Drawn(L"Ann Example", {1200, 900});
    const PlacedStamp black = TextStamp(L"Ann Example", kStrong, Letters::Black).For({1200, 900});
    ASSERT_EQ(black.pixels.size(), white.pixels.size());
    for (std::size_t i = 0; i < black.pixels.size(); i += 4) {
        EXPECT_EQ(black.pixels[i], 255 - white.pixels[i]);
        EXPECT_EQ(black.pixels[i + 3], white.pixels[i + 3]);
    }
}

TEST(TextStamp, GrowsWithThePicture) {
    const PlacedStamp small = Drawn(L"Draft", {800, 600}), large = Drawn(L"Draft", {4000, 3000});
    EXPECT_NEAR(1.0 * large.size.width / small.size.width, 5, 0.8);
    EXPECT_GT(Drawn(L"Draft", {800, 600}, {WatermarkPlace::Centre, 100}).size.width,
              2 * small.size.width);
}

TEST(TextStamp, DrawsOtherScripts) {
    for (const wchar_t* text :
         {L"\u0410\u043D\u043D\u0430", L"\u0386\u03BD\u03BD\u03B1", L"\u05D0\u05E0\u05D4",
          L"\u0622\u0646", L"\u5B89\u5A1C", L"\u0E2D\u0E31\u0E19", L"\U0001F389 2026"}) {
        const PlacedStamp stamp = Drawn(text, {1200, 900});
        ExpectWithin(stamp, {1200, 900});
        EXPECT_GT(Count(stamp, 200, 200), 50u);
    }
    std::puts("Not shown here: that each script has its own letters; see docs/on-windows.md");
}

TEST(TextStamp, MakesALongTextSmallerAndEndsItWithDots) {
    const PictureSize shown{400, 300};
    const PlacedStamp whole = Drawn(std::wstring(40, L'm'), shown);
    ExpectWithin(whole, shown);
    EXPECT_LE(whole.size.width, 400u);
    EXPECT_LT(whole.size.height, Drawn(L"m", shown).size.height);
    const PlacedStamp cut = Drawn(std::wstring(500, L'm'), shown);
    ExpectWithin(cut, shown);
    EXPECT_GT(cut.size.width, 300u);
    EXPECT_GT(Count(cut, 150, 150), 50u);
}

TEST(TextStamp, IsEmptyForNoTextAndTinyPictures) {
    EXPECT_TRUE(Drawn(L"", {1200, 900}).pixels.empty());
    EXPECT_TRUE(Drawn(L"Ann", {16, 16}).pixels.empty());
}

TEST(TextStamp, TakesAmpersandsTabsAndLineBreaksAsTheyAre) {
    EXPECT_GT(Drawn(L"Ann & Bob", {1200, 900}).size.width,
              Drawn(L"Ann Bob", {1200, 900}).size.width);
    const PlacedStamp lines = Drawn(L"one\r\ntwo\tthree", {1200, 900});
    EXPECT_NEAR(lines.size.height, Drawn(L"one", {1200, 900}).size.height, 4);
}

TEST(TextStamp, IsTheSameForTheSamePicture) {
    EXPECT_EQ(Drawn(L"Ann Example", {1200, 900}).pixels, Drawn(L"Ann Example", {1200, 900}).pixels);
}

TEST(TextStamp, LeavesNoObjectOfTheSystemOpen) {
    Drawn(L"first", {1200, 900}); // what the system keeps for itself is made now
    const DWORD before = obtest::CountGdiObjects();
    for (int round = 0; round < 20; ++round) Drawn(L"again", {1200, 900});
    EXPECT_LE(obtest::CountGdiObjects(), before + 2);
}

TEST(TextStamp, IsSeenOnLightAndDarkPictures) {
    for (const auto& [ground, letters] : {std::pair{0, Letters::White},
                                          {255, Letters::White},
                                          {0, Letters::Black},
                                          {255, Letters::Black}}) {
        const obtest::Raster raster{600, 400, 3, 8,
                                    PictureBytes(600 * 400 * 3, static_cast<std::uint8_t>(ground))};
        const PictureBytes file = obtest::MakeJpeg(raster);
        MemorySource source(file);
        MemoryTarget target;
        const TextStamp stamp(L"Ann Example", kStrong, letters);
        ASSERT_EQ(StampPicture(source, target, stamp, {}), PictureOutcome::Written);
        const obtest::Raster read = obtest::ParseJpeg(target.bytes).raster;
        const auto [least, most] = std::minmax_element(read.bytes.begin(), read.bytes.end());
        EXPECT_GT(*most - *least, 90) << ground;
    }
}

} // namespace
