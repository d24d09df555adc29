// The colours of a list view's parts, row by row of their tables.
#include "ObLibX/src/controls/ListColours.h"

#include <gtest/gtest.h>

namespace {

using namespace ObLibX;

constexpr ListColor Value(std::uint32_t color) { return {ListColor::Source::Value, color}; }
constexpr ListColor Palette(std::uint32_t entry) { return {ListColor::Source::Palette, entry}; }
constexpr ListColor System(std::uint32_t index) { return {ListColor::Source::System, index}; }

// COLOR_WINDOW and so on.
constexpr ListColor kWindow = System(5);
constexpr ListColor kWindowText = System(8);
constexpr ListColor kHighlight = System(13);
constexpr ListColor kHighlightText = System(14);

struct Case {
    RowState row;
    FillAndFrame usual;
    FillAndFrame contrast;
};

constexpr FillAndFrame kSelected{Palette(6), Value(0xE6A869)};
constexpr FillAndFrame kAway{Value(0xF0F0F0), Value(0xD9D9D9)};
constexpr FillAndFrame kHot{Palette(4), Value(0xE6C37A)};
constexpr FillAndFrame kFocused{Value(0xFFFFFF), Value(0xE6A869)};
constexpr FillAndFrame kPlain{Value(0xFFFFFF), Value(0xFFFFFF)};
constexpr FillAndFrame kContrastSelected{kHighlight, kHighlight};
constexpr FillAndFrame kContrastFramed{kWindow, kHighlight};
constexpr FillAndFrame kContrastPlain{kWindow, kWindow};

// Selected, hot, focused row, focused list: all sixteen.
constexpr Case kRows[] = {
    {{false, false, false, false}, kPlain, kContrastPlain},
    {{false, false, false, true}, kPlain, kContrastPlain},
    {{false, false, true, false}, kPlain, kContrastPlain},
    {{false, false, true, true}, kFocused, kContrastFramed},
    {{false, true, false, false}, kHot, kContrastFramed},
    {{false, true, false, true}, kHot, kContrastFramed},
    {{false, true, true, false}, kHot, kContrastFramed},
    {{false, true, true, true}, kHot, kContrastFramed},
    {{true, false, false, false}, kAway, kContrastSelected},
    {{true, false, false, true}, kSelected, kContrastSelected},
    {{true, false, true, false}, kAway, kContrastSelected},
    {{true, false, true, true}, kSelected, kContrastSelected},
    {{true, true, false, false}, kAway, kContrastSelected},
    {{true, true, false, true}, kSelected, kContrastSelected},
    {{true, true, true, false}, kAway, kContrastSelected},
    {{true, true, true, true}, kSelected, kContrastSelected},
};

TEST(ListColours, OfRowsFollowSelectionThenMouseThenFocus) {
    for (const Case& row : kRows) {
        SCOPED_TRACE(&row - kRows);
        EXPECT_TRUE(row.usual == ColorsOfRow(row.row, false));
        EXPECT_TRUE(row.contrast == ColorsOfRow(row.row, true));
    }
}

TEST(ListColours, ReportAStateInFlags) {
    EXPECT_EQ(0u, CellFlags({}, false));
    EXPECT_EQ(1u, CellFlags({true, false, false, false}, false));
    EXPECT_EQ(2u, CellFlags({false, true, false, false}, false));
    EXPECT_EQ(4u, CellFlags({false, false, true, true}, false));
    EXPECT_EQ(0u, CellFlags({false, false, true, false}, false)) << "in a list without the focus";
    EXPECT_EQ(0u, CellFlags({false, false, false, true}, false)) << "another row";
    EXPECT_EQ(8u, CellFlags({}, true));
    EXPECT_EQ(15u, CellFlags({true, true, true, true}, true));
}

TEST(ListColours, OfTextsAreDarkInTheFirstColumnAndPaleInTheOthers) {
    for (const Case& row : kRows) {
        EXPECT_TRUE(Value(0x212121) == ColorOfCell(row.row, true, false, false));
        EXPECT_TRUE(Value(0xA9A9A9) == ColorOfCell(row.row, false, false, false));
    }
}

TEST(ListColours, OfTextsInADisabledListAreGrey) {
    EXPECT_TRUE(Value(0x808080) == ColorOfCell({}, true, true, false));
    EXPECT_TRUE(Value(0xA9A9A9) == ColorOfCell({}, false, true, false));
    EXPECT_TRUE(System(17) == ColorOfCell({}, true, true, true));
    EXPECT_TRUE(System(17) == ColorOfCell({}, false, true, true));
}

TEST(ListColours, OfTextsInHighContrastGoWithTheFill) {
    for (const Case& row : kRows) {
        const bool isFilled = ColorsOfRow(row.row, true).fill == kHighlight;
        for (const bool isFirst : {true, false}) {
            EXPECT_TRUE((isFilled ? kHighlightText : kWindowText) ==
                        ColorOfCell(row.row, isFirst, false, true));
        }
    }
}

TEST(ListColours, OfTitlesFollowPressAndMouse) {
    EXPECT_TRUE(kPlain == ColorsOfTitle({}, false));
    EXPECT_TRUE(kHot == ColorsOfTitle({false, true}, false));
    EXPECT_TRUE(kSelected == ColorsOfTitle({true, false}, false));
    EXPECT_TRUE(kSelected == ColorsOfTitle({true, true}, false));
    for (const HeaderState& title : {HeaderState{}, HeaderState{true, true}}) {
        EXPECT_TRUE(kContrastPlain == ColorsOfTitle(title, true));
    }
    EXPECT_TRUE(Value(0x797979) == ColorOfTitleText(false));
    EXPECT_TRUE(kWindowText == ColorOfTitleText(true));
}

TEST(ListColours, OfTheGroundAreTheWindows) {
    EXPECT_TRUE(Value(0xFFFFFF) == ColorOfListGround(false));
    EXPECT_TRUE(kWindow == ColorOfListGround(true));
}

} // namespace
