// The flat combo boxes: what the ones that drop a list down paint, and how their button fades.
#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLibX/controls/ComboFixture.h"

namespace {

using namespace ObLibX;
using namespace obtest;

constexpr COLORREF kLine = 0xDFDFDF;

COLORREF drawnColor = 0; // of the text that was drawn last
int WINAPI NoteColor(HDC dc, LPCWSTR text, int count, RECT* rect, UINT flags) {
    drawnColor = GetTextColor(dc);
    return DrawTextExW(dc, const_cast<LPWSTR>(text), count, rect, flags, nullptr);
}

int WINAPI SixteenBits(HDC dc, int index) {
    static const auto real = reinterpret_cast<decltype(&GetDeviceCaps)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"gdi32.dll"), "GetDeviceCaps")));
    return index == BITSPIXEL ? 16 : real(dc, index);
}

class ComboPainting : public ComboTest {
protected:
    void SetUp() override {
        ComboTest::SetUp();
        combo_.Attach(Make(CBS_DROPDOWNLIST));
        SetFocus(parent_.Get());
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
    // Inside the button, beside the arrow.
    COLORREF Button() const {
        return PaintedPixels(window_).At(combo_.buttonRectangle.right - 3, 3);
    }
    // The pixels between frame and button.
    std::vector<COLORREF> TextPixels() const {
        const PaintedPixels pixels(window_);
        std::vector<COLORREF> found;
        for (int x = 1; x < combo_.buttonRectangle.left; ++x) {
            for (int y = 1; y < pixels.Area().bottom - 1; ++y) found.push_back(pixels.At(x, y));
        }
        return found;
    }
    void Show(const std::wstring& text) const {
        SendMessageW(window_, CB_RESETCONTENT, 0, 0);
        Add(text.c_str());
        SendMessageW(window_, CB_SETCURSEL, 0, 0);
    }
    // A text without its last characters, one after the other, until it fits.
    std::wstring CutByHand(std::wstring text) const {
        const ClientDc dc(window_);
        const HGDIOBJ old = SelectObject(dc.Get(), GetFont(9, L"Segoe UI", 400, 0));
        const int space = combo_.buttonRectangle.left - 1 - Scale(4);
        SIZE size{};
        while (GetTextExtentPoint32W(dc.Get(), text.c_str(), static_cast<int>(text.size()), &size),
               size.cx > space) {
            text.pop_back();
        }
        SelectObject(dc.Get(), old);
        return text;
    }
    COLORREF Ground() { return combo_.GetFillColor(); }

    ObFlatComboBoxDropdownList combo_{1001};
};

TEST_F(ComboPainting, HasAFrameALineAndAnArrow) {
    const PaintedPixels pixels(window_);
    EXPECT_TRUE(pixels.IsFramed(pixels.Area(), kLine));
    const PixelRect& button = combo_.buttonRectangle;
    EXPECT_EQ(button.Height(),
              pixels.Count({button.left, button.top, button.left + 1, button.bottom}, kLine));
    const PixelRect arrow{combo_.arrowPosition.x, combo_.arrowPosition.y,
                          combo_.arrowPosition.x + static_cast<int>(combo_.arrowSize.cx),
                          combo_.arrowPosition.y + static_cast<int>(combo_.arrowSize.cy)};
    EXPECT_LT(pixels.Count(arrow, Ground()), arrow.Width() * arrow.Height());
    EXPECT_EQ(0, pixels.Count(pixels.Area(), 0x123456));
}

TEST_F(ComboPainting, DropsCharactersOfALongTextUntilItFits) {
    const std::wstring text = L"A text that is much longer than the combo box is wide";
    const std::wstring cut = CutByHand(text);
    ASSERT_LT(5u, cut.size());
    ASSERT_LT(cut.size(), text.size());
    Show(text);
    const auto shown = TextPixels();
    Show(cut);
    EXPECT_EQ(TextPixels(), shown);
    Show(cut.substr(0, cut.size() - 1));
    EXPECT_NE(TextPixels(), shown);
}

TEST_F(ComboPainting, CutsATextOf65536UnitsToo) {
    const std::wstring text(65536, L'w');
    Show(text);
    ASSERT_EQ(65536, SendMessageW(window_, WM_GETTEXTLENGTH, 0, 0));
    const auto shown = TextPixels();
    Show(CutByHand(text.substr(0, 500)));
    EXPECT_EQ(TextPixels(), shown);
}

TEST_F(ComboPainting, IsWhiteOnTheHotLightColourWithTheFocus) {
    const PixelRect space{1, 1, combo_.buttonRectangle.left, ClientArea(window_).bottom - 1};
    EXPECT_EQ(Ground(), PaintedPixels(window_).At(3, 3));
    SetFocus(window_);
    const PaintedPixels pixels(window_);
    EXPECT_EQ(GetSysColor(COLOR_HOTLIGHT), pixels.At(2, 2));
    EXPECT_EQ(GetSysColor(COLOR_HOTLIGHT), pixels.At(combo_.buttonRectangle.left - 1, 2));
    EXPECT_LT(10, pixels.Count(space, 0xFFFFFF)) << "the text";
}

TEST_F(ComboPainting, ColoursItsTextByItsState) {
    const ImportPatch<decltype(&DrawTextW)> draw("user32.dll", "DrawTextW", &NoteColor);
    ASSERT_TRUE(draw.Ok());
    const auto color = [&] {
        const PaintedPixels pixels(window_);
        return drawnColor;
    };
    EXPECT_EQ(0u, color());
    SetFocus(window_);
    EXPECT_EQ(0xFFFFFFu, color());
    isBarContrast = true;
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), color()) << "as the hot colour is seen on a window";
    isBarContrast = false;
    SetFocus(parent_.Get());
    EnableWindow(window_, FALSE);
    EXPECT_EQ(0x808080u, color());
}

TEST_F(ComboPainting, HasAnotherArrowWhenDisabled) {
    const auto arrow = [&] {
        const PaintedPixels pixels(window_);
        std::vector<COLORREF> found;
        for (int x = combo_.buttonRectangle.left; x < combo_.buttonRectangle.right; ++x) {
            for (int y = 1; y < pixels.Area().bottom - 1; ++y) found.push_back(pixels.At(x, y));
        }
        return found;
    };
    const auto enabled = arrow();
    EnableWindow(window_, FALSE);
    EXPECT_NE(enabled, arrow());
    EnableWindow(window_, TRUE);
    EXPECT_EQ(enabled, arrow());
}

TEST_F(ComboPainting, LoadsItsArrowsAtEachRefresh) {
    const SIZE size = combo_.arrowSize;
    ObLib::AppGlobals().SetModule(GetModuleHandleW(L"kernel32.dll"), L"", L"");
    combo_.Refresh();
    EXPECT_EQ(0, combo_.arrowSize.cx) << "a program without pictures";
    ObLib::AppGlobals().SetModule(GetModuleHandleW(nullptr), L"", L"");
    combo_.Refresh();
    EXPECT_EQ(size.cx, combo_.arrowSize.cx);
}

TEST_F(ComboPainting, FadesItsButtonUnderTheMouse) {
    const PixelPoint in = combo_.buttonRectangle.Centre();
    Move(window_, in.x, in.y);
    EXPECT_TRUE(combo_.buttonHot);
    EXPECT_TRUE(combo_.fade.IsRunning());
    combo_.SetAnimatedColor(0x112233);
    EXPECT_EQ(0x112233u, Button());
    Move(window_, 5, 5);
    EXPECT_FALSE(combo_.buttonHot || combo_.fade.IsRunning());
    EXPECT_EQ(Ground(), Button());
    Move(window_, in.x, in.y);
    SendMessageW(window_, WM_MOUSELEAVE, 0, 0);
    EXPECT_FALSE(combo_.buttonHot || combo_.fade.IsRunning());
}

TEST_F(ComboPainting, HasNoHoverInHighContrast) {
    obtest::isBarContrast = true;
    const PixelPoint in = combo_.buttonRectangle.Centre();
    Move(window_, in.x, in.y);
    EXPECT_FALSE(combo_.buttonHot);
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), Button());
}

TEST_F(ComboPainting, HasNoHoverBelow32Bits) {
    const ImportPatch<decltype(&GetDeviceCaps)> bits("gdi32.dll", "GetDeviceCaps", &SixteenBits);
    ASSERT_TRUE(bits.Ok());
    const PixelPoint in = combo_.buttonRectangle.Centre();
    Move(window_, in.x, in.y);
    EXPECT_FALSE(combo_.buttonHot || combo_.fade.IsRunning());
}

TEST_F(ComboPainting, EndsItsHoverWhenItIsDisabled) {
    const PixelPoint in = combo_.buttonRectangle.Centre();
    Move(window_, in.x, in.y);
    combo_.SetAnimatedColor(0x112233);
    EnableWindow(window_, FALSE);
    EXPECT_FALSE(combo_.buttonHot || combo_.fade.IsRunning());
    EXPECT_EQ(Ground(), Button());
}

TEST_F(ComboPainting, HasTheSystemsColoursWhenHighContrastComesWhileItFades) {
    const PixelPoint in = combo_.buttonRectangle.Centre();
    Move(window_, in.x, in.y);
    combo_.SetAnimatedColor(0x112233);
    EXPECT_EQ(0x112233u, Button());
    isBarContrast = true;
    combo_.Refresh();
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), Button());
    isBarContrast = false;
}

TEST_F(ComboPainting, AsksAgainForTheMousesLeavingOnItsNextWindow) {
    const ImportPatch<decltype(&TrackMouseEvent)> track("user32.dll", "TrackMouseEvent",
                                                        &NoteTracking);
    ASSERT_TRUE(track.Ok());
    leavesAsked.clear();
    const PixelPoint in = combo_.buttonRectangle.Centre();
    Move(window_, in.x, in.y);
    combo_.SetAnimatedColor(0x112233);
    DestroyWindow(window_);
    combo_.Attach(Make(CBS_DROPDOWNLIST));
    EXPECT_EQ(Ground(), Button());
    Move(window_, in.x, in.y);
    EXPECT_EQ(2u, leavesAsked.size());
    EXPECT_EQ(window_, leavesAsked.back());
}

TEST_F(ComboPainting, EndsItsFadeWithTheWindow) {
    const PixelPoint in = combo_.buttonRectangle.Centre();
    Move(window_, in.x, in.y);
    DestroyWindow(window_);
    EXPECT_FALSE(combo_.fade.IsRunning());
    EXPECT_EQ(nullptr, combo_.window);
}

TEST_F(ComboPainting, LeavesADeviceContextAsItWas) {
    DestroyWindow(window_);
    ObFlatComboBoxDropdown combo(1002);
    combo.Attach(Make(CBS_DROPDOWN));
    const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(nullptr));
    const ObLib::UniqueBitmap bitmap(CreateBitmap(300, 100, 1, 32, nullptr));
    const HGDIOBJ old = SelectObject(dc.Get(), bitmap.Get());
    SendMessageW(window_, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc.Get()), PRF_CLIENT);
    const RECT edit = PlaceOf(Parts().hwndItem);
    EXPECT_TRUE(RectVisible(dc.Get(), &edit)) << "who prints the edit next";
    SelectObject(dc.Get(), old);
    parent_.Reset();
}

TEST_F(ComboPainting, SurvivesNoSize) {
    SetWindowPos(window_, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOZORDER);
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    combo_.Refresh();
    EXPECT_LE(combo_.buttonRectangle.Width(), combo_.buttonWidth);
    EXPECT_EQ(ClientArea(window_).right, combo_.buttonRectangle.right);
    SetWindowPos(window_, nullptr, 0, 0, 160, 200, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(combo_.buttonWidth, combo_.buttonRectangle.Width());
    const PaintedPixels pixels(window_);
    EXPECT_TRUE(pixels.IsFramed(pixels.Area(), kLine));
}

} // namespace
