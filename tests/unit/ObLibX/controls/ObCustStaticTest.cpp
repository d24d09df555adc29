// Static texts in the flat look: how they come to fit, and in which colours they are drawn.
#include "ObLibX/src/controls/ObCustStatic.h"

#include "ObLibX/src/controls/TextMeasure.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/ObLibX/controls/EditFixture.h"
#include "tests/unit/ObLibX/controls/SystemColor.h"

namespace {

using namespace ObLibX;
using namespace fieldtest;

constexpr wchar_t kLong[] = L"A text of several words that has no room in a narrow window";

class ObFlatStaticTextTest : public FieldsTest {
protected:
    void SetUp() override {
        FieldsTest::SetUp();
        Open(OB_TEST_TEXTS);
    }
    // A text of its own on a window of this size, attached.
    ObFlatStaticText& Attached(std::int32_t size, int width, int height, const wchar_t* text,
                               DWORD style = 0) {
        own_.Reset(CreateWindowExW(0, L"static", text, WS_CHILD | WS_VISIBLE | style, 0, 0, width,
                                   height, dialog_->window, nullptr, nullptr, nullptr));
        text_ = std::make_unique<ObFlatStaticText>(77, L"", size, 400, 0, 0);
        text_->Attach(own_.Get());
        return *text_;
    }
    SIZE SizeNow() const {
        const PixelRect rect = RectInParent(own_.Get());
        return {rect.Width(), rect.Height()};
    }

    std::unique_ptr<ObFlatStaticText> text_; // outlives its window
    ObLib::UniqueWindow own_;
};

TEST_F(ObFlatStaticTextTest, ComesDownToNinePointsAndThenGrowsInHeight) {
    const ObFlatStaticText& text = Attached(11, 60, 14, kLong);
    EXPECT_EQ(9, text.fontSize);
    EXPECT_EQ(GetFont(9, L"", 400, 0),
              reinterpret_cast<HFONT>(SendMessageW(own_.Get(), WM_GETFONT, 0, 0)));
    EXPECT_EQ(60, SizeNow().cx);
    EXPECT_GT(SizeNow().cy, 14);
}

TEST_F(ObFlatStaticTextTest, KeepsNinePointsAndItsHeight) {
    EXPECT_EQ(9, Attached(9, 60, 14, kLong).fontSize);
    EXPECT_EQ(60, SizeNow().cx);
    EXPECT_EQ(14, SizeNow().cy);
}

// The window is one pixel too narrow for its only word.
TEST_F(ObFlatStaticTextTest, GetsAPixelWiderAbove96Dpi) {
    const TextSize needed = MeasureTextIn(GetFont(9, L"", 400, 0), L"Unbreakable", 0, 0);
    Attached(9, needed.width - 1, needed.height, L"Unbreakable");
    EXPECT_EQ(GetDpi() > 96 ? needed.width : needed.width - 1, SizeNow().cx);
    EXPECT_EQ(needed.height, SizeNow().cy);
}

TEST_F(ObFlatStaticTextTest, KeepsASizeThatFits) {
    EXPECT_EQ(14, Attached(14, 400, 60, L"Text").fontSize);
    EXPECT_EQ(60, SizeNow().cy);
}

TEST_F(ObFlatStaticTextTest, FitsAgainWhenItsTextChangesAndKeepsTheSmallerFont) {
    const ObFlatStaticText& text = Attached(14, 200, 60, L"Text");
    EXPECT_EQ(14, text.fontSize);
    SetWindowTextW(own_.Get(), kLong);
    EXPECT_EQ(9, text.fontSize);
    SetWindowTextW(own_.Get(), L"Text");
    EXPECT_EQ(9, text.fontSize);
}

// The objects of a dialog that is opened again get new windows, of the template's size.
TEST_F(ObFlatStaticTextTest, FitsEachWindowFromTheSizeThatItWasMadeWith) {
    ObFlatStaticText& text = Attached(11, 60, 14, kLong);
    const int height = SizeNow().cy;
    own_.Reset(CreateWindowExW(0, L"static", kLong, WS_CHILD | WS_VISIBLE, 0, 0, 60, 14,
                               dialog_->window, nullptr, nullptr, nullptr));
    text.Attach(own_.Get());
    EXPECT_EQ(9, text.fontSize);
    EXPECT_EQ(height, SizeNow().cy) << "nothing of it is cut off";
    own_.Reset(CreateWindowExW(0, L"static", L"Text", WS_CHILD | WS_VISIBLE, 0, 0, 200, 60,
                               dialog_->window, nullptr, nullptr, nullptr));
    text.Attach(own_.Get());
    EXPECT_EQ(11, text.fontSize) << "has room here";
}

TEST_F(ObFlatStaticTextTest, KeepsAFontThatItIsGivenForTheNextWindow) {
    ObFlatStaticText& text = Attached(11, 60, 14, kLong);
    text.SetControlFont(L"Arial", 16, 400, 0);
    EXPECT_EQ(9, text.fontSize);
    own_.Reset();
    EXPECT_EQ(16, text.fontSize);
    text.SetControlFont(L"Arial", 14, 400, 0);
    own_.Reset(CreateWindowExW(0, L"static", L"Text", WS_CHILD | WS_VISIBLE, 0, 0, 200, 60,
                               dialog_->window, nullptr, nullptr, nullptr));
    text.Attach(own_.Get());
    EXPECT_EQ(14, text.fontSize);
}

TEST_F(ObFlatStaticTextTest, TakesTheBaseSizeForNoSize) {
    ProcessDialogSettings().font = {L"Segoe UI", 12};
    ObFlatStaticText& text = Attached(9, 400, 60, L"Text");
    text.SetControlFont(L"", 0, 400, 0);
    EXPECT_EQ(12, text.fontSize);
    text.SetControlFont(L"", 0, 400, 0);
    SetWindowPos(own_.Get(), nullptr, 0, 0, 30, 14, SWP_NOMOVE | SWP_NOZORDER);
    SetWindowTextW(own_.Get(), kLong);
    EXPECT_EQ(9, text.fontSize) << "made to fit from there";
    text.SetControlFont(L"Arial", 0, 400, 0);
    EXPECT_EQ(9, text.fontSize) << "as in Attach";
}

TEST_F(ObFlatStaticTextTest, FitsATextThatItDoesNotShowYet) {
    ObFlatStaticText& text = Attached(14, 200, 60, L"Text");
    text.FitText(kLong);
    EXPECT_EQ(9, text.fontSize);
    EXPECT_EQ(L"Text", TextOfWindow(own_.Get()));
}

TEST_F(ObFlatStaticTextTest, FitsAFontThatItIsGivenLater) {
    ObFlatStaticText& text = Attached(9, 120, 60, kLong);
    text.SetControlFont(L"Arial", 20, 700, 0);
    EXPECT_EQ(9, text.fontSize);
    EXPECT_EQ(GetFont(9, L"Arial", 700, 0),
              reinterpret_cast<HFONT>(SendMessageW(own_.Get(), WM_GETFONT, 0, 0)));
}

int DarkPixels(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    int count = 0;
    for (int y = 0; y < client.bottom; ++y) {
        for (int x = 0; x < client.right; ++x) count += PixelOf(window, x, y) != 0xFFFFFF;
    }
    return count;
}

TEST_F(ObFlatStaticTextTest, LeavesNothingOfALongerText) {
    Attached(9, 200, 20, L"A long text");
    UpdateWindow(own_.Get());
    EXPECT_LT(0, DarkPixels(own_.Get()));
    SetWindowTextW(own_.Get(), L"");
    EXPECT_EQ(0, DarkPixels(own_.Get())) << "filled at once";
    SetWindowTextW(own_.Get(), L"i");
    UpdateWindow(own_.Get());
    EXPECT_LT(0, DarkPixels(own_.Get())) << "and the new text is painted";
}

std::vector<UINT> measured; // flags

int WINAPI RecordFlags(HDC, LPCWSTR, int, RECT* rect, UINT flags) {
    if ((flags & DT_CALCRECT) != 0) measured.push_back(flags & ~static_cast<UINT>(DT_CALCRECT));
    rect->right = rect->left;
    rect->bottom = rect->top;
    return 0;
}

struct StyleCase {
    DWORD style;
    UINT flags;
};

constexpr StyleCase kStyles[] = {
    {SS_LEFT, DT_WORDBREAK},
    {SS_CENTER, DT_WORDBREAK},
    {SS_RIGHT, DT_WORDBREAK},
    {SS_SIMPLE, 0},
    {SS_LEFTNOWORDWRAP, 0},
    {SS_NOPREFIX, DT_WORDBREAK | DT_NOPREFIX},
    {SS_ENDELLIPSIS, DT_WORDBREAK | DT_END_ELLIPSIS},
    {SS_PATHELLIPSIS, DT_WORDBREAK | DT_PATH_ELLIPSIS},
    {SS_WORDELLIPSIS, DT_WORDBREAK | DT_WORD_ELLIPSIS},
    {SS_LEFTNOWORDWRAP | SS_NOPREFIX | SS_ENDELLIPSIS, DT_NOPREFIX | DT_END_ELLIPSIS},
};

TEST_F(ObFlatStaticTextTest, IsMeasuredByTheStyleOfItsWindow) {
    const obtest::ImportPatch<decltype(&DrawTextW)> patch("user32.dll", "DrawTextW", &RecordFlags);
    ASSERT_TRUE(patch.Ok());
    for (const StyleCase& row : kStyles) {
        measured.clear();
        Attached(9, 100, 20, L"Text", row.style);
        EXPECT_EQ(std::vector<UINT>{row.flags}, measured) << std::hex << row.style;
    }
}

TEST_F(ObFlatStaticTextTest, HasItsTextOnWhite) {
    ObFlatStaticText& text = Attached(9, 100, 20, L"Text");
    text.SetTextColor(0x123456);
    const HDC dc = GetDC(own_.Get());
    const HBRUSH brush = text.OnCtlColor(dc, own_.Get());
    EXPECT_EQ(0xFFFFFFu, ColorOfBrush(brush));
    EXPECT_EQ(brush, text.OnCtlColor(dc, own_.Get())) << "the same brush again";
    EXPECT_EQ(0x123456u, GetTextColor(dc));
    EXPECT_EQ(TRANSPARENT, GetBkMode(dc));
    text.SetFillColor(0x00FF00);
    EXPECT_EQ(0x00FF00u, ColorOfBrush(text.OnCtlColor(dc, own_.Get())));
    text.SetFillColor(kNoColor);
    EXPECT_EQ(GetParentBackground(own_.Get()), ColorOfBrush(text.OnCtlColor(dc, own_.Get())));
    EnableWindow(own_.Get(), FALSE);
    text.OnCtlColor(dc, own_.Get());
    EXPECT_EQ(0x808080u, GetTextColor(dc));
    ReleaseDC(own_.Get(), dc);
}

TEST_F(ObFlatStaticTextTest, HasTheColoursOfWindowsInHighContrast) {
    const SystemColor window(COLOR_WINDOW, 0x400000);
    const SystemColor windowText(COLOR_WINDOWTEXT, 0x00FFFF);
    ObFlatStaticText& text = Attached(9, 100, 20, L"Text");
    isContrast = true;
    const HDC dc = GetDC(own_.Get());
    EXPECT_EQ(0x400000u, ColorOfBrush(text.OnCtlColor(dc, own_.Get())));
    EXPECT_EQ(0x00FFFFu, GetTextColor(dc));
    ReleaseDC(own_.Get(), dc);
}

HFONT WINAPI NoFont(const LOGFONTW*) { return nullptr; }

TEST_F(ObFlatStaticTextTest, EndsTheProcessWithoutAFont) {
    const obtest::ImportPatch<decltype(&CreateFontIndirectW)> patch("gdi32.dll",
                                                                    "CreateFontIndirectW", &NoFont);
    ASSERT_TRUE(patch.Ok());
    EXPECT_FATAL(Attached(33, 100, 20, L"Text"), "ObLibX\\src\\TextMeasure.cpp");
}

} // namespace
