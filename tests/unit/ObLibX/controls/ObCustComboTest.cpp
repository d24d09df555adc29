// The flat combo boxes: their parts, places, the button and the text.
#include "ObLibX/src/controls/ObCustCombo.h"

#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/ObLibX/controls/BarFixture.h"

namespace {

using namespace ObLibX;
using obtest::PaintedPixels;

constexpr COLORREF kLine = 0xDFDFDF;

// The objects outlive their windows, as in a dialog.
class ComboTest : public obtest::BarTest {
protected:
    HWND Make(DWORD kind) {
        window_ =
            Child(L"ComboBox", kind | WS_VSCROLL | CBS_HASSTRINGS | WS_TABSTOP, {20, 20, 180, 220});
        for (const wchar_t* const text : {L"First", L"Second", L"Third"}) {
            SendMessageW(window_, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
        }
        SendMessageW(window_, CB_SETCURSEL, 1, 0);
        return window_;
    }
    PixelRect ListOnScreen() const {
        COMBOBOXINFO info{};
        info.cbSize = sizeof info;
        GetComboBoxInfo(window_, &info);
        return OnScreen(info.hwndList);
    }
    static PixelRect OnScreen(HWND window) {
        RECT rect{};
        GetWindowRect(window, &rect);
        return AsPixels(rect);
    }
    HWND window_ = nullptr;
};

class ComboParts : public ComboTest {};

TEST_F(ComboParts, AreFatalWhenMissing) {
    const HWND label = Child(L"Static", 0, {20, 20, 100, 40});
    ObFlatComboBoxSimple simple(1001);
    EXPECT_FATAL(simple.Attach(label), "ObLibX\\src\\ObCustCombo.cpp");
    ObFlatComboBoxDropdown withEdit(1001);
    EXPECT_FATAL(withEdit.Attach(Make(CBS_DROPDOWNLIST)), "ObLibX\\src\\ObCustCombo.cpp");
}

TEST_F(ComboParts, OfASimpleOneAreAFramedEditAndAListBelow) {
    ObFlatComboBoxSimple combo(1001);
    SetWindowLongPtrW(Make(CBS_SIMPLE), GWL_EXSTYLE, WS_EX_CLIENTEDGE);
    const PixelRect edit = [&] {
        COMBOBOXINFO info{};
        info.cbSize = sizeof info;
        GetComboBoxInfo(window_, &info);
        return OnScreen(info.hwndItem);
    }();
    combo.Attach(window_);
    EXPECT_EQ(0, GetWindowLongPtrW(window_, GWL_EXSTYLE) & WS_EX_CLIENTEDGE);
    ASSERT_NE(nullptr, combo.editObject);
    EXPECT_EQ(1, combo.editObject->frameWidth);
    EXPECT_NE(nullptr, combo.editObject->frameWindow);
    EXPECT_EQ(4, ListOnScreen().Width() - edit.Width());
    EXPECT_EQ(0u, GetClassLongPtrW(combo.listWindow, GCL_STYLE) & CS_DROPSHADOW);
    parent_.Reset();
    EXPECT_EQ(nullptr, combo.listWindow);
}

TEST_F(ComboParts, OfADropdownAreAnEditWithoutAFrameAndAButton) {
    ObFlatComboBoxDropdown combo(1001);
    combo.Attach(Make(CBS_DROPDOWN));
    ASSERT_NE(nullptr, combo.editObject);
    EXPECT_TRUE(combo.editObject->hideFrame);
    EXPECT_FALSE(IsWindowVisible(combo.editObject->frameWindow));
    EXPECT_GT(combo.buttonWidth, 0);
    EXPECT_EQ(ClientArea(window_).right, combo.buttonRectangle.right);
    EXPECT_EQ(OnScreen(window_).bottom + 1, ListOnScreen().top);
    EXPECT_GE(combo.arrowPosition.x, combo.buttonRectangle.left);
    parent_.Reset();
}

TEST_F(ComboParts, OfAListAloneAreAButtonAsWideAsItsArrowAndTwoPaddings) {
    ObFlatComboBoxDropdownList combo(1001);
    combo.Attach(Make(CBS_DROPDOWNLIST));
    EXPECT_EQ(nullptr, combo.editObject);
    EXPECT_EQ(Scale(8), combo.arrowSize.cx);
    EXPECT_EQ(combo.arrowSize.cx + 2 * Scale(8), combo.buttonWidth);
    EXPECT_EQ(combo.buttonWidth, combo.buttonRectangle.Width());
    EXPECT_EQ(OnScreen(window_).bottom + 1, ListOnScreen().top);
    parent_.Reset();
}

TEST_F(ComboParts, LeaveTheStockAnswers) {
    for (const DWORD kind : {CBS_SIMPLE, CBS_DROPDOWN, CBS_DROPDOWNLIST}) {
        const HWND stock = Make(kind);
        const HWND flat = Make(kind);
        ObFlatComboBoxSimple simple(1001);
        ObFlatComboBoxDropdown dropdown(1001);
        ObFlatComboBoxDropdownList list(1001);
        if (kind == CBS_SIMPLE) simple.Attach(flat);
        if (kind == CBS_DROPDOWN) dropdown.Attach(flat);
        if (kind == CBS_DROPDOWNLIST) list.Attach(flat);
        const struct {
            UINT message;
            WPARAM wParam;
            LPARAM lParam;
        } rows[] = {{CB_GETCOUNT, 0, 0},
                    {CB_GETCURSEL, 0, 0},
                    {CB_GETLBTEXTLEN, 2, 0},
                    {CB_SETCURSEL, 2, 0},
                    {CB_GETCURSEL, 0, 0},
                    {CB_FINDSTRINGEXACT, 0, reinterpret_cast<LPARAM>(L"first")},
                    {CB_SETITEMDATA, 1, 77},
                    {CB_GETITEMDATA, 1, 0},
                    {CB_DELETESTRING, 0, 0},
                    {CB_GETCURSEL, 0, 0},
                    {CB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(L"Sec")},
                    {CB_GETDROPPEDSTATE, 0, 0},
                    {CB_RESETCONTENT, 0, 0},
                    {CB_GETCOUNT, 0, 0},
                    {CB_SETCURSEL, 4, 0}};
        for (const auto& row : rows) {
            EXPECT_EQ(SendMessageW(stock, row.message, row.wParam, row.lParam),
                      SendMessageW(flat, row.message, row.wParam, row.lParam))
                << kind << " " << row.message;
        }
        DestroyWindow(stock);
        DestroyWindow(flat);
    }
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
    // The columns of the text's space that aren't all ground: those of the text.
    int TextWidth(COLORREF ground) const {
        const PaintedPixels pixels(window_);
        int last = 0;
        for (int x = 2; x < combo_.buttonRectangle.left; ++x) {
            const PixelRect column{x, 2, x + 1, pixels.Area().bottom - 2};
            if (pixels.Count(column, ground) < column.Height()) last = x;
        }
        return last;
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

TEST_F(ComboPainting, CutsALongTextBeforeTheButton) {
    const int whole = TextWidth(Ground());
    EXPECT_GT(whole, 10);
    SendMessageW(
        window_, CB_INSERTSTRING, 0,
        reinterpret_cast<LPARAM>(L"A text that is much longer than the combo box is wide"));
    SendMessageW(window_, CB_SETCURSEL, 0, 0);
    EXPECT_GT(TextWidth(Ground()), whole);
    EXPECT_LT(TextWidth(Ground()), combo_.buttonRectangle.left);
}

TEST_F(ComboPainting, IsWhiteOnTheHotLightColourWithTheFocus) {
    EXPECT_EQ(Ground(), PaintedPixels(window_).At(3, 3));
    SetFocus(window_);
    const PaintedPixels pixels(window_);
    EXPECT_EQ(GetSysColor(COLOR_HOTLIGHT), pixels.At(2, 2));
    EXPECT_EQ(GetSysColor(COLOR_HOTLIGHT), pixels.At(combo_.buttonRectangle.left - 1, 2));
    EXPECT_LT(0, pixels.Count(pixels.Area(), 0xFFFFFF));
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

TEST_F(ComboPainting, EndsItsFadeWithTheWindow) {
    const PixelPoint in = combo_.buttonRectangle.Centre();
    Move(window_, in.x, in.y);
    DestroyWindow(window_);
    EXPECT_FALSE(combo_.fade.IsRunning());
    EXPECT_EQ(nullptr, combo_.window);
}

TEST_F(ComboPainting, SurvivesNoSize) {
    SetWindowPos(window_, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOZORDER);
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    combo_.Refresh();
}

} // namespace
