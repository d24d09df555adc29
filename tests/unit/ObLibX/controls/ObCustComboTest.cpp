// The flat combo boxes: their parts and places, and what the stock ones go on doing.
#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/ObLibX/controls/ComboFixture.h"

namespace {

using namespace ObLibX;
using namespace obtest;

constexpr COLORREF kLine = 0xDFDFDF;
constexpr char kSource[] = "ObLibX\\src\\ObCustCombo.cpp";

COMBOBOXINFO fakeParts{};
BOOL WINAPI GiveFakeParts(HWND, COMBOBOXINFO* info) {
    *info = fakeParts;
    return TRUE;
}

class ComboParts : public ComboTest {};

TEST_F(ComboParts, AreFatalWhenMissing) {
    const HWND label = Child(L"Static", 0, {20, 20, 100, 40});
    ObFlatComboBoxSimple simple(1001);
    EXPECT_FATAL(simple.Attach(label), kSource);
    Make(CBS_DROPDOWN);
    const ImportPatch<decltype(&GetComboBoxInfo)> parts("user32.dll", "GetComboBoxInfo",
                                                        &GiveFakeParts);
    ASSERT_TRUE(parts.Ok());
    ObFlatComboBoxDropdown dropdown(1001);
    fakeParts = {};
    fakeParts.hwndList = window_;
    EXPECT_FATAL(dropdown.Attach(window_), kSource) << "no edit";
    fakeParts = {};
    fakeParts.hwndItem = window_;
    EXPECT_FATAL(dropdown.Attach(window_), kSource) << "no list";
}

TEST_F(ComboParts, HaveNoEdgesOfTheSystem) {
    ObFlatComboBoxDropdownList combo(1001);
    Make(CBS_DROPDOWNLIST);
    SetWindowLongPtrW(window_, GWL_EXSTYLE, WS_EX_CLIENTEDGE | WS_EX_DLGMODALFRAME | WS_EX_RIGHT);
    combo.Attach(window_);
    EXPECT_EQ(WS_EX_RIGHT, GetWindowLongPtrW(window_, GWL_EXSTYLE) &
                               (WS_EX_CLIENTEDGE | WS_EX_DLGMODALFRAME | WS_EX_RIGHT));
    EXPECT_EQ(0u, GetClassLongPtrW(combo.listWindow, GCL_STYLE) & CS_DROPSHADOW);
    parent_.Reset();
    EXPECT_EQ(nullptr, combo.listWindow);
}

// A frame of one pixel over the whole window, once the stock one has painted its border.
TEST_F(ComboParts, HaveAFrameOverTheirWholeWindows) {
    ObFlatComboBoxSimple combo(1001);
    combo.Attach(Make(CBS_SIMPLE));
    for (const HWND part : {window_, combo.listWindow}) {
        RedrawWindow(part, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        SendMessageW(part, WM_NCPAINT, 1, 0);
        const PixelRect rect = OnScreen(part);
        const HDC dc = GetWindowDC(part);
        for (int x = 0; x < rect.Width(); ++x) {
            ASSERT_EQ(kLine, GetPixel(dc, x, 0)) << x;
            ASSERT_EQ(kLine, GetPixel(dc, x, rect.Height() - 1)) << x;
        }
        for (int y = 0; y < rect.Height(); ++y) {
            ASSERT_EQ(kLine, GetPixel(dc, 0, y)) << y;
            ASSERT_EQ(kLine, GetPixel(dc, rect.Width() - 1, y)) << y;
        }
        ReleaseDC(part, dc);
    }
    parent_.Reset();
}

TEST_F(ComboParts, OfASimpleOneAreAFramedEditAndAListBelow) {
    ObFlatComboBoxSimple combo(1001);
    Make(CBS_SIMPLE);
    const PixelRect edit = OnScreen(Parts().hwndItem);
    combo.Attach(window_);
    ASSERT_NE(nullptr, combo.editObject);
    EXPECT_EQ(1, combo.editObject->frameWidth);
    const PixelRect frame = OnScreen(combo.editObject->frameWindow);
    const PixelRect list = ListOnScreen();
    EXPECT_EQ(frame.bottom - 1 + 2, list.top) << "two below what is inside the frame";
    EXPECT_EQ(edit.left - 2, list.left);
    EXPECT_EQ(edit.right + 2, list.right);
    EXPECT_LE(list.bottom, OnScreen(window_).bottom);
    parent_.Reset();
}

TEST_F(ComboParts, OfASimpleOneStayTogether) {
    ObFlatComboBoxSimple combo(1001);
    combo.Attach(Make(CBS_SIMPLE));
    const auto expectBelow = [&](const char* after) {
        const PixelRect frame = OnScreen(combo.editObject->frameWindow);
        const PixelRect edit = OnScreen(Parts().hwndItem);
        EXPECT_EQ(frame.bottom + 1, ListOnScreen().top) << after;
        EXPECT_EQ(edit.left - 2, ListOnScreen().left) << after;
        EXPECT_EQ(edit.right + 2, ListOnScreen().right) << after;
        EXPECT_LE(ListOnScreen().bottom, OnScreen(window_).bottom) << after;
    };
    SetWindowPos(window_, nullptr, 0, 0, 240, 150, SWP_NOMOVE | SWP_NOZORDER);
    expectBelow("another size");
    SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(ANSI_FIXED_FONT)),
                 TRUE);
    expectBelow("another font");
    SendMessageW(window_, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), 30);
    expectBelow("another height of the edit");
    parent_.Reset();
}

TEST_F(ComboParts, OfADropdownAreAnEditWithoutAFrameAndAButton) {
    ObFlatComboBoxDropdown combo(1001);
    Make(CBS_DROPDOWN);
    const PixelRect edit = OnScreen(Parts().hwndItem);
    combo.Attach(window_);
    ASSERT_NE(nullptr, combo.editObject);
    EXPECT_TRUE(combo.editObject->hideFrame);
    EXPECT_FALSE(IsWindowVisible(combo.editObject->frameWindow));
    const PixelRect whole = OnScreen(window_);
    EXPECT_EQ(std::max(whole.bottom - edit.bottom, whole.right - edit.right) - 1,
              combo.buttonWidth);
    EXPECT_EQ(combo.buttonWidth, combo.buttonRectangle.Width());
    EXPECT_EQ(ClientArea(window_).right, combo.buttonRectangle.right);
    parent_.Reset();
}

TEST_F(ComboParts, OfAListAloneAreAButtonAsWideAsItsArrowAndTwoPaddings) {
    ObFlatComboBoxDropdownList combo(1001);
    combo.Attach(Make(CBS_DROPDOWNLIST));
    EXPECT_EQ(nullptr, combo.editObject);
    EXPECT_EQ(Scale(8), combo.arrowSize.cx);
    EXPECT_EQ(combo.arrowSize.cx + 2 * Scale(8), combo.buttonWidth);
    EXPECT_EQ(combo.buttonWidth, combo.buttonRectangle.Width());
    const PixelRect& button = combo.buttonRectangle;
    const int left = combo.arrowPosition.x - button.left;
    const int right = button.right - combo.arrowPosition.x - static_cast<int>(combo.arrowSize.cx);
    const int above = combo.arrowPosition.y - button.top;
    const int below = button.bottom - combo.arrowPosition.y - static_cast<int>(combo.arrowSize.cy);
    EXPECT_EQ(Scale(8), left);
    EXPECT_EQ(left, right);
    EXPECT_TRUE(above == below || above + 1 == below) << above << " and " << below;
    parent_.Reset();
}

// The stock combo box places the list anew at each drop.
TEST_F(ComboParts, BeginTheirListOneBelowTheComboBoxEachTime) {
    for (const DWORD kind : {CBS_DROPDOWN, CBS_DROPDOWNLIST}) {
        ObFlatComboBoxDropdown dropdown(1001);
        ObFlatComboBoxDropdownList list(1001);
        Make(kind);
        if (kind == CBS_DROPDOWN) dropdown.Attach(window_);
        if (kind == CBS_DROPDOWNLIST) list.Attach(window_);
        EXPECT_EQ(OnScreen(window_).bottom + 1, ListOnScreen().top) << "before the first drop";
        EXPECT_EQ(OnScreen(Parts().hwndItem != nullptr ? Parts().hwndItem : window_).left,
                  ListOnScreen().left);
        for (int drop = 0; drop < 2; ++drop) {
            SendMessageW(window_, CB_SHOWDROPDOWN, TRUE, 0);
            EXPECT_TRUE(IsWindowVisible(Parts().hwndList));
            EXPECT_EQ(OnScreen(window_).bottom + 1, ListOnScreen().top) << kind << " " << drop;
            SendMessageW(window_, CB_SHOWDROPDOWN, FALSE, 0);
            SetWindowPos(window_, nullptr, 40, 70, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        }
        DestroyWindow(window_);
    }
}

TEST_F(ComboParts, LeaveAListAboveThatHasNoRoomBelow) {
    ObFlatComboBoxDropdownList combo(1001);
    combo.Attach(Make(CBS_DROPDOWNLIST));
    const int height = OnScreen(window_).Height();
    SetWindowPos(parent_.Get(), nullptr, 0, GetSystemMetrics(SM_CYSCREEN) - 20 - height, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER);
    SendMessageW(window_, CB_SHOWDROPDOWN, TRUE, 0);
    EXPECT_LE(ListOnScreen().bottom, OnScreen(window_).top + 1);
    SendMessageW(window_, CB_SHOWDROPDOWN, FALSE, 0);
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

// A stock combo box passes the question on to its parent, which doesn't know the edit.
TEST_F(ComboParts, GiveADisabledEditItsColours) {
    for (const bool isContrast : {false, true}) {
        for (const DWORD kind : {CBS_SIMPLE, CBS_DROPDOWN}) {
            isBarContrast = isContrast;
            ObFlatComboBoxSimple simple(1001);
            ObFlatComboBoxDropdown dropdown(1001);
            Make(kind);
            if (kind == CBS_SIMPLE) simple.Attach(window_);
            if (kind == CBS_DROPDOWN) dropdown.Attach(window_);
            ObFlatEdit& edit = kind == CBS_SIMPLE ? *simple.editObject : *dropdown.editObject;
            EnableWindow(window_, FALSE);
            const ClientDc dc(edit.window);
            ::SetTextColor(dc.Get(), 0x123456);
            const auto brush = reinterpret_cast<HBRUSH>(
                SendMessageW(window_, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc.Get()),
                             reinterpret_cast<LPARAM>(edit.window)));
            LOGBRUSH described{};
            ASSERT_NE(0, GetObjectW(brush, sizeof described, &described));
            if (isContrast) {
                EXPECT_EQ(UINT{BS_SOLID}, described.lbStyle) << "the system's own";
            } else {
                EXPECT_EQ(edit.GetFillColor(), described.lbColor) << kind;
                EXPECT_EQ(0x808080u, ::GetTextColor(dc.Get())) << kind;
            }
            DestroyWindow(window_);
        }
    }
}

TEST_F(ComboParts, FillTheFrameOfADisabledEditAsTheEdit) {
    ObFlatComboBoxSimple combo(1001);
    combo.Attach(Make(CBS_SIMPLE));
    EnableWindow(window_, FALSE);
    const PaintedPixels frame(combo.editObject->frameWindow);
    EXPECT_TRUE(frame.IsFramed(frame.Area(), kLine));
    EXPECT_EQ(combo.editObject->GetFillColor(), frame.At(1, 1));
    parent_.Reset();
}

// As the dialog may delete them.
TEST_F(ComboParts, SurviveAParentThatDeletesThemWhileItIsNotified) {
    Deletable<ObFlatComboBoxDropdownList> combo(1001);
    combo->Attach(Make(CBS_DROPDOWNLIST));
    SetFocus(window_);
    onCommand_ = [&](int code) {
        if (code != CBN_KILLFOCUS) return;
        DestroyWindow(window_);
        combo.Delete();
    };
    SetFocus(parent_.Get());
    EXPECT_FALSE(combo.IsThere());
}

} // namespace
