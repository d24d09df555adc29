// How a static text comes to fit its window.
#include "ObLibX/src/controls/TextFit.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace ObLibX;

// A text of 20 characters without a blank's place to break but in the middle: each is as wide as
// the font's points, and a line is twice as tall.
struct FakeText {
    std::int32_t windowWidth;
    std::vector<std::int32_t> sizes; // that were measured

    TextSize operator()(std::int32_t size, bool isWrapped) {
        sizes.push_back(size);
        const bool isBroken = isWrapped && 20 * size > windowWidth;
        return isBroken ? TextSize{10 * size, 4 * size} : TextSize{20 * size, 2 * size};
    }
};

TextFit Fitted(const TextFit& now, std::int32_t dpi = 96) {
    return FitText(now, dpi, FakeText{now.window.width, {}});
}

TEST(TextFitTest, LeavesATextThatFits) {
    EXPECT_EQ((TextFit{{220, 22}, 11}), Fitted({{220, 22}, 11}));
    EXPECT_EQ((TextFit{{110, 44}, 11}), Fitted({{110, 44}, 11})) << "in two lines";
}

TEST(TextFitTest, ShrinksALargeFontUntilTheTextIsNarrowEnough) {
    EXPECT_EQ((TextFit{{200, 22}, 10}), Fitted({{200, 22}, 11}));
    EXPECT_EQ((TextFit{{180, 22}, 9}), Fitted({{180, 22}, 14}));
}

TEST(TextFitTest, NeverShrinksBelowNinePointsAndThenGrowsInHeight) {
    const TextFit fit = Fitted({{100, 22}, 11});
    EXPECT_EQ(9, fit.fontSize);
    EXPECT_EQ((TextSize{100, 38}), fit.window) << "two lines of 18, and 2";
    EXPECT_EQ((TextFit{{100, 40}, 9}), Fitted({{100, 40}, 11})) << "tall enough";
}

TEST(TextFitTest, GrowsInHeightWhereOnlyThatOverflows) {
    EXPECT_EQ((TextFit{{220, 24}, 11}), Fitted({{220, 13}, 11}));
}

TEST(TextFitTest, MeasuresEachSizeOnce) {
    FakeText text{150, {}};
    FitText({{150, 22}, 12}, 96, std::ref(text));
    EXPECT_EQ((std::vector<std::int32_t>{12, 12, 11, 10, 9, 9}), text.sizes);
}

TEST(TextFitTest, LeavesASmallFontThatIsTooTall) {
    EXPECT_EQ((TextFit{{180, 10}, 9}), Fitted({{180, 10}, 9}));
    EXPECT_EQ((TextFit{{160, 10}, 8}), Fitted({{160, 10}, 8}, 192));
}

// A text that can't be broken.
TextSize OneWord(std::int32_t, bool) { return {100, 18}; }

TEST(TextFitTest, WidensByThreeScaledPixelsAtMostAndOnlyAbove96Dpi) {
    EXPECT_EQ((TextFit{{97, 18}, 9}), FitText({{97, 18}, 9}, 96, &OneWord));
    EXPECT_EQ((TextFit{{100, 18}, 9}), FitText({{97, 18}, 9}, 97, &OneWord));
    EXPECT_EQ((TextFit{{96, 18}, 9}), FitText({{96, 18}, 9}, 97, &OneWord));
    EXPECT_EQ((TextFit{{100, 18}, 9}), FitText({{94, 18}, 9}, 192, &OneWord));
    EXPECT_EQ((TextFit{{93, 18}, 9}), FitText({{93, 18}, 9}, 192, &OneWord));
    EXPECT_EQ((TextFit{{100, 18}, 9}), FitText({{95, 18}, 9}, 144, &OneWord)) << "4.5 is rounded";
    EXPECT_EQ((TextFit{{100, 10}, 9}), FitText({{97, 10}, 9}, 144, &OneWord))
        << "too tall as well: only the width changes";
}

} // namespace
