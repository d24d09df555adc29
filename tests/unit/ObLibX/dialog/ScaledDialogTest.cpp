// Dialogs and their controls on a screen of more than 96 dpi.
#include <commctrl.h>

#include <cstdlib>

#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/ImageSet.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLibX/dialog/DialogFixture.h"

namespace {

using namespace ObLibX;

int ExpectedDpi() {
    wchar_t text[20] = {};
    return GetEnvironmentVariableW(L"OB_EXPECTED_DPI", text, 20) != 0 ? _wtoi(text) : 0;
}

// A length at 96 dpi, and the one that the screen asks for.
int AtScale(int length) { return MulDiv(length, ExpectedDpi(), 96); }

LOGFONTW Described(HFONT font) {
    LOGFONTW described{};
    GetObjectW(font, sizeof described, &described);
    return described;
}

LOGFONTW FontOf(HWND window) {
    return Described(reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)));
}

class PlainControl : public ObCustomControl {
public:
    PlainControl() : ObCustomControl(1003, nullptr, L"", 0) {}
};

class ScaledDialog : public DialogTest {
protected:
    void SetUp() override {
        DialogTest::SetUp();
        ASSERT_LT(96, ExpectedDpi());
        ASSERT_EQ(ExpectedDpi(), GetDpi());
    }
};

TEST_F(ScaledDialog, HasFontsOfPointsOnThisScreen) {
    for (const int points : {9, 11, 14}) {
        EXPECT_EQ(-MulDiv(points, ExpectedDpi(), 72),
                  Described(GetFont(points, L"Arial", 400, 0)).lfHeight)
            << points;
    }
}

TEST_F(ScaledDialog, HasTheBaseFontAtThisScale) {
    RecordingDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    const LOGFONTW font = FontOf(dialog.GetItem(1001, true));
    EXPECT_STREQ(L"Segoe UI", font.lfFaceName);
    EXPECT_EQ(-MulDiv(9, ExpectedDpi(), 72), font.lfHeight);
}

// The scale of which a window knows.
DPI_AWARENESS AwarenessOf(DPI_AWARENESS_CONTEXT context) {
    return GetAwarenessFromDpiAwarenessContext(context);
}

TEST_F(ScaledDialog, IsStretchedByTheSystemOnMonitorsOfOtherScales) {
    ASSERT_EQ(DPI_AWARENESS_PER_MONITOR_AWARE, AwarenessOf(GetThreadDpiAwarenessContext()));
    RecordingDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    EXPECT_EQ(DPI_AWARENESS_SYSTEM_AWARE, AwarenessOf(GetWindowDpiAwarenessContext(dialog.window)));
    EXPECT_EQ(DPI_AWARENESS_PER_MONITOR_AWARE, AwarenessOf(GetThreadDpiAwarenessContext()))
        << "the thread's own is put back";
}

TEST_F(ScaledDialog, HasABoldHeadingThatIsWhole) {
    RecordingDialog dialog(OB_TEST_GROUPS);
    dialog.Open();
    const HWND heading = dialog.GetItem(1005, true);
    const LOGFONTW font = FontOf(heading);
    EXPECT_EQ(700, font.lfWeight);
    RECT rect{};
    GetWindowRect(heading, &rect);
    EXPECT_EQ(TextHeightOf(heading) + 2, rect.bottom - rect.top);
}

TEST_F(ScaledDialog, HasFocusBoxesAtThisScale) {
    RecordingDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    PlainControl control;
    control.Attach(dialog.GetItem(1003, true));
    SetWindowPos(control.window, nullptr, 0, 0, 200, 80, SWP_NOMOVE | SWP_NOZORDER);
    const int inset = AtScale(2);
    control.ComputeFocusRectangle();
    EXPECT_EQ((PixelRect{inset, inset, 200 - inset, 80 - inset}), control.focusRectangle);
    control.clipFocusToText = true;
    control.textRectangle = {20, 1, 60, 30};
    control.layoutRectangle = {0, 0, 200, 31};
    control.ComputeFocusRectangle();
    EXPECT_EQ((PixelRect{20 - inset, 0, 60 + inset, 31}), control.focusRectangle);
}

TEST_F(ScaledDialog, HasTheImagesOfThisScale) {
    std::int32_t list[17];
    for (int at = 0; at < 16; ++at) list[at] = 100 + at;
    list[16] = kImageListEnd;
    const int scale = ExpectedDpi() == 144 ? 2 : 3;
    EXPECT_EQ(100 + scale, GetImageId(ImageSet(list), 0, GetDpi()));
    EXPECT_EQ(108 + scale, GetImageId(ImageSet(list), 1, GetDpi()));
}

TEST_F(ScaledDialog, HasTooltipsOf300PixelsAtMostAtEveryScale) {
    RecordingDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    dialog.AddTooltip(dialog.GetItem(1001, true), L"Tip");
    const HWND tips = FindWindowExW(nullptr, nullptr, L"tooltips_class32", nullptr);
    ASSERT_NE(nullptr, tips);
    EXPECT_EQ(300, SendMessageW(tips, TTM_GETMAXTIPWIDTH, 0, 0));
}

} // namespace
