// How well texts are read on their grounds, measured as the guidelines for accessible content do
// it, and the agreed colours that give less than these ask for (docs/accessibility.md).
#include <cmath>

#include "ObLibX/src/controls/ControlText.h"
#include "ObLibX/src/controls/ListPainting.h"
#include "ObLibX/src/controls/ObCustSwitch.h"
#include "ObLibX/src/controls/ObCustToggle.h"
#include "ObLibX/src/controls/ObHyperlink.h"
#include "ObLibX/src/dialog/Palette.h"
#include "tests/unit/ObLibX/controls/ButtonFixture.h"

namespace {

using namespace buttontest;

constexpr double kLeastForText = 4.5;

// Of a channel of 0 to 255.
double Linear(int channel) {
    const double value = channel / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double Luminance(COLORREF color) {
    return 0.2126 * Linear(GetRValue(color)) + 0.7152 * Linear(GetGValue(color)) +
           0.0722 * Linear(GetBValue(color));
}

double Contrast(COLORREF one, COLORREF other) {
    const double a = Luminance(one);
    const double b = Luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

TEST(Contrast, IsThatOfTheGuidelines) {
    EXPECT_NEAR(21, Contrast(0, 0xFFFFFF), 0.001);
    EXPECT_NEAR(1, Contrast(0x123456, 0x123456), 0.001);
    EXPECT_NEAR(4.54, Contrast(0x767676, 0xFFFFFF), 0.005);
}

struct AgreedColor {
    COLORREF color;
    COLORREF ground;
    double contrast;
};

constexpr COLORREF kWhite = 0xFFFFFF;
constexpr COLORREF kBarTrack = 0xF0F0F0;
// The fills of a list's rows and titles: hot; selected, and pressed; selected in a list without the
// focus.
constexpr COLORREF kHotFill = 0xFBF3E5;
constexpr COLORREF kSelectedFill = 0xFDE8D2;
constexpr COLORREF kSelectedAwayFill = 0xF0F0F0;

constexpr AgreedColor kAgreed[] = {{0x797979, kWhite, 4.35},
                                   {0x797979, kHotFill, 3.84},
                                   {0x797979, kSelectedFill, 3.46},
                                   {0xA9A9A9, kWhite, 2.35},
                                   {0xA9A9A9, kHotFill, 2.08},
                                   {0xA9A9A9, kSelectedAwayFill, 2.06},
                                   {0xA9A9A9, kSelectedFill, 1.87},
                                   {0xE6A869, kWhite, 2.52},
                                   {0xE6A869, kSelectedFill, 2.00},
                                   {0xE6C37A, kWhite, 1.95},
                                   {0xE6C37A, kHotFill, 1.72},
                                   {0xA8A8A8, kWhite, 2.38},
                                   {0xC0C0C0, kWhite, 1.82},
                                   {0xDFDFDF, kWhite, 1.33},
                                   {0xCCCCCC, kWhite, 1.61},
                                   {0xCCCCCC, kBarTrack, 1.41},
                                   {0xE6E6E6, kWhite, 1.25},
                                   {0x808080, kWhite, 3.95},
                                   {0x808080, kSelectedAwayFill, 3.47},
                                   {kAccentColor, kWhite, 4.77},
                                   {0xCC6600, kWhite, 5.57}};

TEST(Contrast, OfAgreedColoursOnTheirGroundsIsAsDocumented) {
    for (const AgreedColor& row : kAgreed) {
        EXPECT_NEAR(row.contrast, Contrast(row.color, row.ground), 0.0051)
            << std::hex << row.color << " on " << row.ground;
    }
}

// The colours above are those that are in use.
TEST(Contrast, IsMeasuredOfWhatIsPainted) {
    const RowState hot{false, true, false, false};
    const RowState selected{true, false, false, true};
    const RowState selectedAway{true, false, false, false};
    const struct {
        COLORREF agreed;
        COLORREF painted;
    } rows[] = {{kHotFill, AsColor(ColorsOfRow(hot, false).fill)},
                {0xE6C37A, AsColor(ColorsOfRow(hot, false).frame)},
                {kSelectedFill, AsColor(ColorsOfRow(selected, false).fill)},
                {0xE6A869, AsColor(ColorsOfRow(selected, false).frame)},
                {kSelectedAwayFill, AsColor(ColorsOfRow(selectedAway, false).fill)},
                {0x797979, AsColor(ColorOfTitleText(false))},
                {0x797979, GetPaletteColor(8)},
                {0xA9A9A9, AsColor(ColorOfCell({}, false, false, false))},
                {0xA8A8A8, GetPaletteColor(kPaletteGray)},
                {0xCCCCCC, GetPaletteColor(10)},
                {0xDFDFDF, GetPaletteColor(kPaletteFrame)},
                {0xC0C0C0, ObFlatBtn(kPlain).frameColor},
                {0x808080, kDisabledTextColor},
                {kAccentColor, GetPaletteColor(kPaletteAccent)},
                {0xCC6600, kLinkColor}};
    for (const auto& row : rows) EXPECT_EQ(row.agreed, row.painted);
}

class TextOfButton : public FlatButton {
protected:
    // Of the text as it is drawn, on the fill as it is painted.
    double ContrastOf(int id) {
        const COLORREF text = TextOf(id).color;
        return Contrast(text, PixelOf(id, 1, 1)); // between frame and focus box
    }
};

TEST_F(TextOfButton, IsReadInEachState) {
    for (const int id : {kPlain, kBlue, kSplit, kDrop, kTwoLines}) {
        SCOPED_TRACE(id);
        EXPECT_LE(kLeastForText, ContrastOf(id)) << "idle";
        Hover(id);
        EXPECT_LE(kLeastForText, ContrastOf(id)) << "hot";
        while (Tick()) EXPECT_LE(kLeastForText, ContrastOf(id)) << "in a step of its fade";
        EXPECT_LE(kLeastForText, ContrastOf(id)) << "at its end";
        Down(id);
        EXPECT_LE(kLeastForText, ContrastOf(id)) << "pressed";
        Up(id);
        Leave(id);
    }
}

// The guidelines leave disabled texts out; a text that nobody can see is a mistake all the same.
TEST_F(TextOfButton, IsSeenWhileDisabled) {
    for (const int id : {kPlain, kBlue, kSplit, kDrop, kTwoLines}) {
        EnableWindow(Item(id), FALSE);
        EXPECT_LE(1.5, ContrastOf(id)) << id;
    }
}

class TextOfToggle : public ControlsTest {
protected:
    void SetUp() override {
        ControlsTest::SetUp();
        Dress({{1101, &Make<ObFlatCheckbox>},
               {1103, &Make<ObFlatRadio>},
               {1107, &Make<ObFlatToggleBtn>}});
        Open(OB_TEST_TOGGLES);
    }
};

TEST_F(TextOfToggle, IsReadInEachState) {
    for (const int id : {1101, 1103, 1107}) {
        const SIZE size = SizeOf(id);
        for (const UINT state : {BST_UNCHECKED, BST_CHECKED}) {
            CheckDlgButton(dialog_->window, id, state);
            const COLORREF text = TextOf(id).color;
            EXPECT_LE(kLeastForText, Contrast(text, PixelOf(id, size.cx - 1, 0))) << id;
        }
    }
}

} // namespace
