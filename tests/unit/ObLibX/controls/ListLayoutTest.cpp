// Where the parts of a list view's cells and titles are.
#include "ObLibX/src/controls/ListLayout.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace ObLibX;

constexpr PixelRect kCell{100, 50, 300, 75};

TEST(ListLayout, ScalesItsLengths) {
    const ListMeasures usual = ListMeasuresAt(96);
    EXPECT_EQ(4, usual.inset);
    EXPECT_EQ(3, usual.titleBottom);
    EXPECT_EQ(4, usual.checkTop);
    EXPECT_EQ(20, usual.checkAdvance);
    EXPECT_EQ(16, usual.icon);
    EXPECT_EQ(24, usual.iconAdvance);
    EXPECT_EQ(24, usual.hoverTop);
    EXPECT_EQ(18, usual.rowHeight);
    EXPECT_EQ(24, usual.checkRowHeight);
    const ListMeasures half = ListMeasuresAt(144);
    EXPECT_EQ(6, half.inset);
    EXPECT_EQ(5, half.titleBottom) << "4.5, rounded up";
    EXPECT_EQ(27, half.rowHeight);
    EXPECT_EQ(36, half.checkRowHeight);
}

TEST(ListLayout, PutsATextBetweenTheInsets) {
    const CellParts parts = PlaceInCell(kCell, {}, ListMeasuresAt(96));
    EXPECT_TRUE(parts.check.IsEmpty() && parts.icon.IsEmpty());
    EXPECT_EQ((PixelRect{104, 50, 296, 75}), parts.text);
}

TEST(ListLayout, PutsACheckBoxFourDownAndTheTextTwentyFurther) {
    const CellParts parts = PlaceInCell(kCell, {{13, 13}, false}, ListMeasuresAt(96));
    EXPECT_EQ((PixelRect{104, 54, 117, 67}), parts.check);
    EXPECT_EQ((PixelRect{124, 50, 296, 75}), parts.text);
}

TEST(ListLayout, PutsACheckBoxInTheMiddleOfALowRow) {
    const ListMeasures measures = ListMeasuresAt(96);
    EXPECT_EQ(51, PlaceInCell({0, 50, 99, 66}, {{13, 13}, false}, measures).check.top);
    EXPECT_EQ(50, PlaceInCell({0, 50, 99, 60}, {{13, 13}, false}, measures).check.top);
    EXPECT_EQ(54, PlaceInCell({0, 50, 99, 71}, {{13, 13}, false}, measures).check.top);
}

TEST(ListLayout, PutsAnIconInTheMiddleAndTheTextTwentyFourFurther) {
    const CellParts parts = PlaceInCell(kCell, {{}, true}, ListMeasuresAt(96));
    EXPECT_EQ((PixelRect{104, 54, 120, 70}), parts.icon);
    EXPECT_EQ((PixelRect{128, 50, 296, 75}), parts.text);
}

TEST(ListLayout, PutsAnIconAfterACheckBox) {
    const CellParts parts = PlaceInCell({100, 50, 300, 98}, {{26, 26}, true}, ListMeasuresAt(192));
    EXPECT_EQ((PixelRect{108, 58, 134, 84}), parts.check);
    EXPECT_EQ((PixelRect{148, 58, 180, 90}), parts.icon);
    EXPECT_EQ((PixelRect{196, 50, 292, 98}), parts.text);
}

TEST(ListLayout, LeavesNoRoomForATextInANarrowCell) {
    for (const int width : {0, 1, 8, 20}) {
        const CellParts parts =
            PlaceInCell({100, 50, 100 + width, 75}, {{13, 13}, true}, ListMeasuresAt(96));
        EXPECT_TRUE(parts.text.IsEmpty()) << width;
        EXPECT_EQ(0, parts.text.Width()) << width;
    }
}

TEST(ListLayout, FlipsACheckBoxFromTheCellsEdgeToTheText) {
    const ListMeasures measures = ListMeasuresAt(96);
    EXPECT_EQ((PixelRect{100, 50, 124, 75}), CheckArea(kCell, measures));
    EXPECT_EQ((PixelRect{100, 50, 110, 75}), CheckArea({100, 50, 110, 75}, measures));
    EXPECT_TRUE(CheckArea({100, 50, 100, 75}, measures).IsEmpty());
}

TEST(ListLayout, PutsATitleThreeAboveItsEnd) {
    EXPECT_EQ((PixelRect{104, 0, 196, 21}), TitleText({100, 0, 200, 24}, ListMeasuresAt(96)));
}

// Parts of any cell follow each other without overlapping.
TEST(ListLayout, KeepsPartsApartInAnyCell) {
    std::mt19937 random(1);
    const auto between = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    for (int round = 0; round < 100'000; ++round) {
        const int dpi = between(96, 480);
        const ListMeasures measures = ListMeasuresAt(dpi);
        const int left = between(-30'000, 30'000);
        const PixelRect cell{left, 0, left + between(0, 4000), between(0, 200)};
        const int side = between(0, measures.checkAdvance);
        const CellParts parts = PlaceInCell(cell, {{side, side}, between(0, 1) == 1}, measures);
        ASSERT_GE(parts.text.Width(), 0);
        ASSERT_GE(parts.text.left, cell.left + measures.inset);
        if (!parts.check.IsEmpty()) {
            ASSERT_LE(parts.check.right, parts.text.left);
        }
        if (!parts.icon.IsEmpty()) {
            ASSERT_LE(parts.icon.right, parts.text.left);
            ASSERT_TRUE(parts.check.IsEmpty() || parts.check.right <= parts.icon.left);
        }
    }
}

} // namespace
