// What all flat controls share: fields, colours, focus box, and the palette.
#include "ObLibX/src/dialog/ObCustCtrl.h"

#include <commctrl.h>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/support/ContrastFake.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/ObLibX/dialog/DialogFixture.h"

namespace {

using namespace ObLibX;

using obtest::isContrastOn;
using obtest::ParametersWithContrast;

// The answer to the one question about high contrast is the test's.
class ContrastTest : public DialogTest {
protected:
    void SetUp() override {
        DialogTest::SetUp();
        ASSERT_TRUE(patch_.Ok());
        isContrastOn = false;
    }
    void TearDown() override {
        isContrastOn = false;
        DialogTest::TearDown();
    }

private:
    obtest::ImportPatch<decltype(&SystemParametersInfoW)> patch_{
        "user32.dll", "SystemParametersInfoW", &ParametersWithContrast};
};

struct PaletteRow {
    COLORREF normal;
    int highContrast; // -1: as normal
};

constexpr PaletteRow kRows[] = {{0xFFFFFF, -1},
                                {0xFCFCFC, -1},
                                {0xF6F6F6, -1},
                                {0xC0761B, COLOR_HOTLIGHT},
                                {0xFBF3E5, COLOR_GRADIENTACTIVECAPTION},
                                {0xE8C277, COLOR_ACTIVECAPTION},
                                {0xFDE8D2, COLOR_GRADIENTACTIVECAPTION},
                                {0xE8A765, COLOR_ACTIVECAPTION},
                                {0x797979, -1},
                                {0xA8A8A8, -1},
                                {0xCCCCCC, -1},
                                {0xDFDFDF, -1},
                                {0x212121, COLOR_ACTIVECAPTION},
                                {0x0000FA, -1},
                                {0x000000, COLOR_BTNTEXT}};

class PaletteTest : public ContrastTest {};

TEST_F(PaletteTest, HasFifteenColours) {
    for (std::uint32_t at = 0; at < std::size(kRows); ++at) {
        EXPECT_EQ(kRows[at].normal, GetPaletteColor(at)) << at;
    }
    EXPECT_FATAL(GetPaletteColor(15), "ObLibX\\src\\Palette.cpp");
    EXPECT_FATAL(GetPaletteColor(0xFFFFFFFF), "ObLibX\\src\\Palette.cpp");
}

TEST_F(PaletteTest, HasSomeOfTheSystemInHighContrast) {
    isContrastOn = true;
    for (std::uint32_t at = 0; at < std::size(kRows); ++at) {
        const PaletteRow& row = kRows[at];
        const COLORREF expected = row.highContrast < 0 ? row.normal : GetSysColor(row.highContrast);
        EXPECT_EQ(expected, GetPaletteColor(at)) << at;
    }
}

class PlainControl : public ObCustomControl {
public:
    PlainControl() : ObCustomControl(1003, nullptr, L"", 0) {}
};

class ControlTest : public ContrastTest {
protected:
    void SetUp() override {
        ContrastTest::SetUp();
        dialog_.Open();
        window_ = dialog_.GetItem(1003, true);
    }
    RecordingDialog dialog_{OB_TEST_PLAIN};
    PlainControl control_;
    HWND window_ = nullptr;
};

TEST_F(ControlTest, HasItsDefaults) {
    EXPECT_EQ(nullptr, control_.window);
    EXPECT_EQ(1003, control_.id);
    EXPECT_EQ(0u, control_.images.rows);
    EXPECT_EQ(0u, control_.textColor);
    EXPECT_EQ(0xFFFFFFFFu, control_.fillColor);
    EXPECT_EQ(0xFBF3E5u, control_.GetHoverColor());
    EXPECT_EQ(0xFFFFFFFFu, control_.animatedColor);
    EXPECT_EQ(0xFCE8D4u, control_.GetPressedColor());
    EXPECT_EQ(0xC0C0C0u, control_.GetFrameColor());
    EXPECT_EQ(0xEAB47Eu, control_.GetHotFrameColor());
    EXPECT_EQ(0xC0C0C0u, control_.currentFrameColor);
    EXPECT_EQ(400, control_.fontWeight);
    EXPECT_EQ(8, control_.padding);
    EXPECT_TRUE(control_.useUIState);
    EXPECT_FALSE(control_.endEllipsis || control_.clipFocusToText || control_.isPressed ||
                 control_.noHighContrastRecolor);
    EXPECT_FALSE(control_.OnMeasureItem(nullptr) || control_.OnDrawItem(nullptr));
    EXPECT_EQ(0u, control_.SetAnimatedColor(1));
    EXPECT_EQ(0, control_.GetImageWidth());
}

TEST_F(ControlTest, HasTheBaseFontWithoutOneOfItsOwn) {
    control_.endEllipsis = true;
    control_.Attach(window_);
    EXPECT_STREQ(L"Segoe UI", control_.fontName.CStr());
    EXPECT_EQ(9, control_.fontSize);
    EXPECT_FALSE(control_.endEllipsis);
    EXPECT_EQ(GetFont(9, L"Segoe UI", 400, 0), control_.GetControlFont());
}

TEST_F(ControlTest, HasSize9WithANameAlone) {
    control_.fontName = L"Arial";
    ProcessDialogSettings().font = {L"Segoe UI", 12};
    control_.Attach(window_);
    EXPECT_STREQ(L"Arial", control_.fontName.CStr());
    EXPECT_EQ(9, control_.fontSize);
}

TEST_F(ControlTest, KeepsASizeWithoutAName) {
    control_.fontSize = 14;
    control_.Attach(window_);
    EXPECT_STREQ(L"Segoe UI", control_.fontName.CStr());
    EXPECT_EQ(14, control_.fontSize);
}

TEST_F(ControlTest, HasTheBaseSizeOr9ForASizeOf0ThatItIsGivenLater) {
    ProcessDialogSettings().font = {L"Segoe UI", 12};
    control_.Attach(window_);
    control_.SetControlFont(L"", 0, 400, 0);
    EXPECT_STREQ(L"Segoe UI", control_.fontName.CStr());
    EXPECT_EQ(12, control_.fontSize);
    control_.SetControlFont(L"Arial", 0, 400, 0);
    EXPECT_EQ(9, control_.fontSize);
    EXPECT_EQ(GetFont(9, L"Arial", 400, 0),
              reinterpret_cast<HFONT>(SendMessageW(window_, WM_GETFONT, 0, 0)));
}

std::vector<WPARAM> released; // keys whose release has reached the window itself

LRESULT CALLBACK RecordKeyUp(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                             DWORD_PTR) {
    if (message == WM_KEYUP) released.push_back(wParam);
    return DefSubclassProc(window, message, wParam, lParam);
}

TEST_F(ControlTest, LeavesPageKeysToItsWindowWithoutASheet) {
    SetWindowSubclass(window_, &RecordKeyUp, 1, 0);
    control_.Attach(window_);
    released.clear();
    BYTE keys[256] = {};
    keys[VK_CONTROL] = 0x80;
    SetKeyboardState(keys);
    SendMessageW(window_, WM_KEYUP, VK_NEXT, 0);
    SendMessageW(window_, WM_KEYUP, VK_PRIOR, 0);
    keys[VK_CONTROL] = 0;
    SetKeyboardState(keys);
    EXPECT_EQ((std::vector<WPARAM>{VK_NEXT, VK_PRIOR}), released);
}

TEST_F(ControlTest, FillsByItsState) {
    control_.Attach(window_);
    EXPECT_EQ(GetParentBackground(window_), control_.GetFillColor());
    control_.fillColor = 0x111111;
    EXPECT_EQ(0x111111u, control_.GetFillColor());
    control_.animatedColor = 0x222222;
    EXPECT_EQ(0x222222u, control_.GetFillColor());
    control_.isPressed = true;
    EXPECT_EQ(0xFCE8D4u, control_.GetFillColor());
    control_.pressedColor = kNoColor;
    EXPECT_EQ(0x222222u, control_.GetFillColor()) << "no colour for a press: the fill stays";
    EXPECT_EQ(0x111111u, control_.GetRawFillColor());
    isContrastOn = true;
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), control_.GetFillColor());
}

TEST_F(ControlTest, HasTheSystemsTextColourInHighContrast) {
    control_.SetTextColor(0x123456);
    EXPECT_EQ(0x123456u, control_.GetTextColor());
    isContrastOn = true;
    EXPECT_EQ(GetSysColor(COLOR_WINDOWTEXT), control_.GetTextColor());
    EXPECT_EQ(0x123456u, control_.GetRawTextColor());
}

TEST_F(ControlTest, FollowsThePaletteUntilAColourIsSet) {
    EXPECT_EQ(0xFBF3E5u, control_.hoverColor);
    control_.UsePalette(&ObCustomControl::textColor, 14);
    control_.UsePalette(&ObCustomControl::fillColor, 3);
    control_.SetFillColor(0x123456);
    isContrastOn = true;
    control_.TakePaletteColors();
    EXPECT_EQ(GetSysColor(COLOR_GRADIENTACTIVECAPTION), control_.hoverColor);
    EXPECT_EQ(GetSysColor(COLOR_BTNTEXT), control_.textColor);
    EXPECT_EQ(0x123456u, control_.fillColor) << "somebody's own";
    control_.UsePalette(&ObCustomControl::textColor, 0);
    isContrastOn = false;
    control_.TakePaletteColors();
    EXPECT_EQ(0xFBF3E5u, control_.hoverColor);
    EXPECT_EQ(0xFFFFFFu, control_.textColor) << "the entry that it was given last";
    EXPECT_FATAL(control_.UsePalette(&ObCustomControl::textColor, 15), "ObLibX\\src\\Palette.cpp");
}

TEST_F(ControlTest, FollowsThePaletteInFourColoursAtMost) {
    control_.UsePalette(&ObCustomControl::textColor, 14);
    control_.UsePalette(&ObCustomControl::fillColor, 3);
    control_.UsePalette(&ObCustomControl::pressedColor, 3);
    control_.UsePalette(&ObCustomControl::hoverColor, 3);
    EXPECT_FATAL(control_.UsePalette(&ObCustomControl::frameColor, 3),
                 "ObLibX\\src\\ObCustCtrl.cpp");
}

TEST_F(ControlTest, LeavesATransparentWindowToTheDialogsBackground) {
    const HDC dc = GetDC(window_);
    EXPECT_EQ(nullptr, control_.OnCtlColor(dc, window_));
    SetWindowLongPtrW(window_, GWL_EXSTYLE, WS_EX_TRANSPARENT);
    EXPECT_EQ(GetStockObject(NULL_BRUSH), control_.OnCtlColor(dc, window_));
    EXPECT_EQ(TRANSPARENT, GetBkMode(dc));
    isContrastOn = true;
    EXPECT_EQ(nullptr, control_.OnCtlColor(dc, window_));
    ReleaseDC(window_, dc);
}

TEST_F(ControlTest, HasAFocusBoxInsideItsWindowOrAroundItsText) {
    control_.Attach(window_);
    SetWindowPos(window_, nullptr, 0, 0, 100, 40, SWP_NOMOVE | SWP_NOZORDER);
    control_.ComputeFocusRectangle();
    EXPECT_EQ((PixelRect{2, 2, 98, 38}), control_.focusRectangle);
    control_.clipFocusToText = true;
    control_.textRectangle = {10, 1, 60, 30};
    control_.layoutRectangle = {0, 0, 100, 31};
    control_.ComputeFocusRectangle();
    EXPECT_EQ((PixelRect{8, 0, 62, 31}), control_.focusRectangle);
}

TEST_F(ControlTest, TakesAnotherFontAndColoursAfterItIsAttached) {
    control_.Attach(window_);
    control_.SetControlFont(L"Arial", 14, 700, 1);
    EXPECT_EQ(GetFont(14, L"Arial", 700, 1),
              reinterpret_cast<HFONT>(SendMessageW(window_, WM_GETFONT, 0, 0)));
    ShowWindow(dialog_.window, SW_SHOWNA);
    ValidateRect(window_, nullptr);
    control_.SetTextColor(1);
    EXPECT_TRUE(GetUpdateRect(window_, nullptr, FALSE));
    ValidateRect(window_, nullptr);
    control_.SetFillColor(2);
    EXPECT_TRUE(GetUpdateRect(window_, nullptr, FALSE));
    EXPECT_EQ(2u, control_.fillColor);
}

std::vector<HWND> invalidated;

BOOL WINAPI RecordInvalidation(HWND window, const RECT*, BOOL) {
    invalidated.push_back(window);
    return TRUE;
}

TEST_F(ControlTest, OutlivesItsWindow) {
    control_.Attach(window_);
    DestroyWindow(window_);
    EXPECT_EQ(nullptr, control_.window);
    const obtest::ImportPatch<decltype(&InvalidateRect)> patch("user32.dll", "InvalidateRect",
                                                               &RecordInvalidation);
    ASSERT_TRUE(patch.Ok());
    invalidated.clear();
    control_.SetTextColor(1);
    control_.SetControlFont(L"Arial", 9, 400, 0);
    control_.Refresh();
    EXPECT_TRUE(invalidated.empty()) << "without a window the system takes all windows";
}

} // namespace
