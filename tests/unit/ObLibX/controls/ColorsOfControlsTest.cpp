// The colours of flat controls while high contrast begins and ends.
#include "ObLibX/src/controls/ObCustBtn.h"
#include "ObLibX/src/controls/ObCustStatic.h"
#include "ObLibX/src/dialog/Palette.h"
#include "tests/unit/ObLibX/controls/EditFixture.h"
#include "tests/unit/ObLibX/controls/SystemColor.h"

namespace {

using namespace ObLibX;
using namespace fieldtest;

class ColorsOfControls : public FieldsTest {
protected:
    // In a dark scheme of high contrast.
    void OpenInTheDark(std::int32_t dialogTemplate) {
        isContrast = true;
        Open(dialogTemplate, false);
    }
    // With the dialog open.
    void EndHighContrast() {
        isContrast = false;
        SendMessageW(dialog_->window, WM_SYSCOLORCHANGE, 0, 0);
    }
    // With the dialog closed meanwhile.
    void EndHighContrastBetweenTwoOpenings() {
        DestroyWindow(dialog_->window);
        isContrast = false;
        dialog_->Create(nullptr);
    }
    void ExpectHeadingsOf(COLORREF color) const {
        EXPECT_EQ(color, Object<ObFlatStaticText>(1008).GetTextColor()) << "of a group box";
        EXPECT_EQ(color, Object<ObFlatStaticText>(1003).GetTextColor()) << "HOTLIGHT";
        EXPECT_EQ(color, Object<ObFlatStaticText>(1004).GetTextColor()) << "the accent's value";
    }
    void ExpectPlainAccent(std::int32_t id) const {
        auto& button = Object<ObFlatBtn>(id);
        EXPECT_EQ(kAccentColor, button.GetRawFillColor());
        EXPECT_EQ(kAccentColor, button.GetHoverColor());
        EXPECT_EQ(kAccentColor, button.GetPressedColor());
        EXPECT_EQ(0xFFFFFFu, button.GetTextColor());
        EXPECT_EQ(kAccentColor, button.GetFillColor());
    }
    // Text of buttons and headings, and what is hot.
    const SystemColor text_{COLOR_BTNTEXT, 0xFFFFFF};
    const SystemColor hot_{COLOR_HOTLIGHT, 0x00FFFF};
};

TEST_F(ColorsOfControls, AreThoseOfThePaletteWhenHighContrastHasEnded) {
    OpenInTheDark(OB_TEST_TEXTS);
    EXPECT_EQ(0xFFFFFFu, Object<ObFlatStaticText>(1008).textColor);
    EndHighContrast();
    ExpectHeadingsOf(0);
    EXPECT_EQ(255u, Object<ObFlatStaticText>(1005).textColor) << "its own colour";
}

TEST_F(ColorsOfControls, AreThoseOfThePaletteInTheNextOpening) {
    OpenInTheDark(OB_TEST_TEXTS);
    EndHighContrastBetweenTwoOpenings();
    ExpectHeadingsOf(0);
}

TEST_F(ColorsOfControls, AreThoseOfTheSchemeWhenHighContrastHasBegun) {
    Open(OB_TEST_TEXTS, false);
    isContrast = true;
    SendMessageW(dialog_->window, WM_THEMECHANGED, 0, 0);
    EXPECT_EQ(0xFFFFFFu, Object<ObFlatStaticText>(1008).textColor);
    const SystemColor another(COLOR_BTNTEXT, 0x00FF00);
    EXPECT_EQ(0x00FF00u, Object<ObFlatStaticText>(1008).textColor) << "another scheme";
}

TEST_F(ColorsOfControls, OfABlueButtonAreTheAccentAgain) {
    OpenInTheDark(OB_TEST_ACCENT);
    EXPECT_EQ(0x00FFFFu, Object<ObFlatBtn>(1001).GetRawFillColor());
    EndHighContrast();
    ExpectPlainAccent(1001);
    EnableWindow(Item(1001), FALSE);
    EXPECT_EQ(0xF0F0F0u, Object<ObFlatBtn>(1001).GetFillColor()) << "dimmed as an accent";
    EXPECT_EQ(0xFBF3E5u, Object<ObFlatBtn>(2).GetHoverColor()) << "of a plain button";
}

TEST_F(ColorsOfControls, OfABlueButtonKeepAPlainDefaultButtonPlain) {
    OpenInTheDark(OB_TEST_BLUE_AND_DEFAULT);
    EndHighContrastBetweenTwoOpenings();
    ExpectPlainAccent(1001);
    EXPECT_EQ(0xF6F6F6u, Object<ObFlatBtn>(1).GetRawFillColor());
}

TEST_F(ColorsOfControls, OfADefaultButtonAreTheAccentAgain) {
    OpenInTheDark(OB_TEST_DEFAULT);
    EXPECT_EQ(0x00FFFFu, Object<ObFlatBtn>(1).GetRawFillColor());
    EndHighContrast();
    ExpectPlainAccent(1);
    EXPECT_EQ(0xF6F6F6u, Object<ObFlatBtn>(2).GetRawFillColor());
}

TEST_F(ColorsOfControls, ThatADialogHasSetStay) {
    OpenInTheDark(OB_TEST_TEXTS);
    Object<ObFlatStaticText>(1003).SetTextColor(0x123456);
    Object<ObFlatStaticText>(1003).hoverColor = 0x654321;
    EndHighContrast();
    EXPECT_EQ(0x123456u, Object<ObFlatStaticText>(1003).GetTextColor());
    EXPECT_EQ(0x654321u, Object<ObFlatStaticText>(1003).GetHoverColor());
}

} // namespace
