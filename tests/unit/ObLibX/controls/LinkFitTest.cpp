// Where a link is, once its window is as large as its text.
#include "ObLibX/src/controls/LinkFit.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace ObLibX;

constexpr PixelRect kRoom{10, 20, 110, 35}; // 100 by 15
constexpr LinkAlignment kAlignments[] = {LinkAlignment::Left, LinkAlignment::Centre,
                                         LinkAlignment::Right};

TEST(LinkFitTest, NarrowsTheWindowToATextThatFits) {
    EXPECT_EQ((PixelRect{10, 20, 50, 35}), FitLink(kRoom, {40, 15}, LinkAlignment::Left));
    EXPECT_EQ((PixelRect{40, 20, 80, 35}), FitLink(kRoom, {40, 15}, LinkAlignment::Centre));
    EXPECT_EQ((PixelRect{39, 20, 80, 35}), FitLink(kRoom, {41, 15}, LinkAlignment::Centre));
    EXPECT_EQ((PixelRect{70, 20, 110, 35}), FitLink(kRoom, {40, 15}, LinkAlignment::Right));
}

TEST(LinkFitTest, LeavesAWindowThatIsJustWideEnough) {
    for (const LinkAlignment alignment : kAlignments) {
        EXPECT_EQ(kRoom, FitLink(kRoom, {100, 15}, alignment));
    }
}

TEST(LinkFitTest, NeverChangesTheHeightForATextThatFits) {
    EXPECT_EQ(35, FitLink(kRoom, {40, 30}, LinkAlignment::Left).bottom);
    EXPECT_EQ(35, FitLink(kRoom, {40, 5}, LinkAlignment::Left).bottom);
}

struct WideCase {
    std::int32_t textWidth;
    std::int32_t lines;
};

// One more line than whole widths, also where the text takes just these.
TEST(LinkFitTest, GrowsInHeightForAWiderText) {
    for (const WideCase& row :
         {WideCase{101, 2}, {199, 2}, {200, 3}, {250, 3}, {299, 3}, {300, 4}, {1000, 11}}) {
        for (const LinkAlignment alignment : kAlignments) {
            EXPECT_EQ((PixelRect{10, 20, 110, 20 + 15 * row.lines}),
                      FitLink(kRoom, {row.textWidth, 15}, alignment))
                << row.textWidth;
        }
    }
}

TEST(LinkFitTest, NeverMakesAHighWindowLower) {
    constexpr PixelRect kHigh{0, 0, 100, 200};
    EXPECT_EQ(kHigh, FitLink(kHigh, {250, 15}, LinkAlignment::Left));
}

TEST(LinkFitTest, MakesAWindowWithoutTextEmpty) {
    EXPECT_EQ((PixelRect{10, 20, 10, 35}), FitLink(kRoom, {0, 15}, LinkAlignment::Left));
    EXPECT_EQ((PixelRect{60, 20, 60, 35}), FitLink(kRoom, {0, 15}, LinkAlignment::Centre));
    EXPECT_EQ((PixelRect{110, 20, 110, 35}), FitLink(kRoom, {-3, 15}, LinkAlignment::Right));
}

TEST(LinkFitTest, LeavesARoomWithoutWidth) {
    for (const PixelRect& room : {PixelRect{5, 5, 5, 20}, {5, 5, 3, 20}, {}}) {
        EXPECT_EQ(room, FitLink(room, {40, 15}, LinkAlignment::Centre));
    }
}

TEST(LinkFitTest, EndsAtTheLargestNumber) {
    const PixelRect fit = FitLink({0, 5, 1, 20}, {0x7FFFFFFF, 0x7FFFFFFF}, LinkAlignment::Left);
    EXPECT_EQ((PixelRect{0, 5, 1, 0x7FFFFFFF}), fit);
}

// Inside the room, and with space for each line that is needed.
void ExpectFits(const PixelRect& room, const TextSize& line, LinkAlignment alignment) {
    const PixelRect fit = FitLink(room, line, alignment);
    ASSERT_GE(fit.left, room.left);
    ASSERT_LE(fit.right, room.right);
    ASSERT_EQ(room.top, fit.top);
    ASSERT_GE(fit.bottom, room.bottom);
    if (line.width <= room.Width()) {
        ASSERT_EQ(line.width, fit.Width());
        ASSERT_EQ(room.bottom, fit.bottom);
        return;
    }
    ASSERT_EQ(room.Width(), fit.Width());
    const bool isCut = fit.bottom == 0x7FFFFFFF;
    const std::int64_t height = std::int64_t{fit.bottom} - fit.top;
    ASSERT_TRUE(isCut || height * room.Width() >= std::int64_t{line.width} * line.height);
}

TEST(LinkFitTest, HasSpaceForTheTextInASmallGrid) {
    for (std::int32_t width = 1; width <= 40; ++width) {
        for (std::int32_t text = 0; text <= 130; ++text) {
            for (std::int32_t height = 0; height <= 4; ++height) {
                for (const LinkAlignment alignment : kAlignments) {
                    ASSERT_NO_FATAL_FAILURE(
                        ExpectFits({7, 3, 7 + width, 6}, {text, height}, alignment));
                }
            }
        }
    }
}

TEST(LinkFitTest, HasSpaceForAMillionRandomTexts) {
    constexpr unsigned kSeed = 20261123;
    std::mt19937 random(kSeed);
    std::uniform_int_distribution<std::int32_t> place(-32768, 32767);
    std::uniform_int_distribution<std::int32_t> width(1, 4000);
    std::uniform_int_distribution<std::int32_t> bits(0, 30);
    for (int left = 1'000'000; left > 0; --left) {
        const PixelPoint at{place(random), place(random)};
        const PixelRect room{at.x, at.y, at.x + width(random), at.y + width(random)};
        const TextSize line{static_cast<std::int32_t>(random() >> 1 >> bits(random)),
                            static_cast<std::int32_t>(random() >> 19)};
        ASSERT_NO_FATAL_FAILURE(ExpectFits(room, line, kAlignments[left % 3])) << "seed " << kSeed;
    }
}

TEST(LinkFocusTest, IsTwoPixelsAroundTheWindow) {
    EXPECT_EQ((PixelRect{8, 18, 112, 37}), LinkFocus(kRoom, 15));
    EXPECT_EQ((PixelRect{8, 18, 112, 37}), LinkFocus(kRoom, 9));
    EXPECT_EQ((PixelRect{8, 18, 12, 37}), LinkFocus({10, 20, 10, 35}, 0));
}

TEST(LinkFocusTest, IsTwoPixelsBelowATextThatIsHigher) {
    EXPECT_EQ((PixelRect{8, 18, 112, 42}), LinkFocus(kRoom, 20));
}

TEST(RectangleEdges, AreOnePixelThick) {
    const auto edges = EdgesOf({1, 2, 11, 22});
    EXPECT_EQ((PixelRect{1, 2, 11, 3}), edges[0]);
    EXPECT_EQ((PixelRect{1, 21, 11, 22}), edges[1]);
    EXPECT_EQ((PixelRect{1, 2, 2, 22}), edges[2]);
    EXPECT_EQ((PixelRect{10, 2, 11, 22}), edges[3]);
}

TEST(RectangleEdges, AreEmptyOfAnEmptyRectangle) {
    for (const PixelRect& edge : EdgesOf({5, 5, 5, 9})) EXPECT_EQ(PixelRect(), edge);
}

} // namespace
