// Password fields in the flat look: the eye, the keys, and what screen readers get.
#include "ObLibX/src/controls/ObCustPassword.h"

#include <commctrl.h>
#include <oleacc.h>

#include <algorithm>
#include <functional>

#include "ObLib/Src/Win32/ComResources.h"
#include "ObLibX/src/controls/ControlImages.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLibX/controls/EditFixture.h"

namespace {

using namespace ObLibX;
using namespace fieldtest;

using Pixels = std::vector<COLORREF>;

class ObFlatPasswordTest : public FieldsTest {
protected:
    void SetUp() override {
        FieldsTest::SetUp();
        Open(OB_TEST_FIELDS);
        SetWindowTextW(Item(1003), L"secret");
    }
    void TearDown() override {
        SetKeys(false, false);
        FieldsTest::TearDown();
    }
    ObFlatPassword& Password(std::int32_t id = 1003) const { return Object<ObFlatPassword>(id); }
    HWND Eye(std::int32_t id = 1003) const { return Password(id).eyeButton; }
    LRESULT Character(std::int32_t id = 1003) const {
        return SendMessageW(Item(id), EM_GETPASSWORDCHAR, 0, 0);
    }
    DWORD Caret() const {
        DWORD start = 0, end = 0;
        SendMessageW(Item(1003), EM_GETSEL, reinterpret_cast<WPARAM>(&start),
                     reinterpret_cast<LPARAM>(&end));
        EXPECT_EQ(start, end);
        return end;
    }
    void PressEye() const { SendMessageW(Eye(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3)); }
    static void SetKeys(bool isAlt, bool isF8) {
        BYTE keys[256] = {};
        keys[VK_MENU] = isAlt ? 0x80 : 0;
        keys[VK_F8] = isF8 ? 0x80 : 0;
        SetKeyboardState(keys);
    }
    Pixels EyePixels(std::int32_t id = 1003) const {
        PaintNow(Eye(id));
        return ShownPixels(id);
    }
    Pixels ShownPixels(std::int32_t id = 1003) const {
        const PixelRect area = ClientArea(Eye(id));
        Pixels pixels;
        for (int y = 0; y < area.bottom; ++y) {
            for (int x = 0; x < area.right; ++x) pixels.push_back(PixelOf(Eye(id), x, y));
        }
        return pixels;
    }
    // What the eye must look like: the picture in the middle of a white field.
    Pixels Expected(ControlImage image) const {
        const PixelRect area = ClientArea(Eye());
        const ClientDc screen(Eye());
        const OffscreenPaint paint(Eye(), screen.Get());
        FillArea(paint.Dc(), area, 0xFFFFFF);
        const ObLib::UniqueBitmap bitmap =
            LoadImage(GetImageId(ImageSet(ImageList(image)), 0, GetDpi()));
        const SIZE size = ImageSize(bitmap.Get());
        DrawImageAt(paint.Dc(), bitmap.Get(), (area.right - size.cx) / 2,
                    (area.bottom - size.cy) / 2);
        Pixels pixels;
        for (int y = 0; y < area.bottom; ++y) {
            for (int x = 0; x < area.right; ++x) pixels.push_back(GetPixel(paint.Dc(), x, y));
        }
        return pixels;
    }
};

std::vector<HWND> invalidated;
BOOL WINAPI RecordInvalidation(HWND window, const RECT* rect, BOOL erase) {
    static const auto real = reinterpret_cast<decltype(&InvalidateRect)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "InvalidateRect")));
    invalidated.push_back(window);
    return window != nullptr && real(window, rect, erase);
}

// A dialog that goes in the middle of a paint.
HDC WINAPI BeginAndDestroyParent(HWND window, PAINTSTRUCT* paint) {
    static const auto real = reinterpret_cast<decltype(&BeginPaint)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "BeginPaint")));
    const HDC dc = real(window, paint);
    DestroyWindow(GetParent(window));
    return dc;
}

TEST_F(ObFlatPasswordTest, HasAnEyeAtTheRightEndOfItsFrame) {
    const PixelRect placed = FromUnits(10, 90, 100, 14);
    const PixelRect frame = RectInParent(Password().frameWindow);
    EXPECT_EQ((PixelRect{placed.left - 2, placed.top - 2, placed.right + 2, placed.bottom + 2}),
              frame);
    const PixelRect eye = RectInParent(Eye());
    EXPECT_EQ(frame.Height(), eye.Width());
    EXPECT_EQ((PixelRect{frame.right - 2 - frame.Height(), frame.top + 2, frame.right - 2,
                         frame.bottom - 2}),
              eye);
    EXPECT_EQ(placed.left, RectOf(1003).left);
    EXPECT_EQ(eye.left, RectOf(1003).right);
}

TEST_F(ObFlatPasswordTest, HasAnEyeThatTabDoesNotReach) {
    wchar_t name[20] = {};
    GetClassNameW(Eye(), name, 20);
    EXPECT_STREQ(L"Button", name);
    EXPECT_TRUE(IsWindowEnabled(Eye()));
    EXPECT_NE(0, GetWindowLongPtrW(Eye(), GWL_EXSTYLE) & WS_EX_TRANSPARENT);
    EXPECT_EQ(0, GetWindowLongPtrW(Eye(), GWL_STYLE) & WS_TABSTOP);
    EXPECT_EQ(reinterpret_cast<HANDLE>(1), GetPropW(Eye(), L"OB_EDIT_IMGBTN"));
    EXPECT_EQ(&Password(), GetPropW(Item(1003), L"PROP_PASSWORD_OBJECT"));
    EXPECT_NE(nullptr, GetPropW(Item(1003), L"PROP_EDIT_OBJECT"));
    for (HWND below = GetWindow(Eye(), GW_HWNDNEXT); below != nullptr;
         below = GetWindow(below, GW_HWNDNEXT)) {
        EXPECT_EQ(0, GetDlgCtrlID(below)) << "at the bottom, with frames and other eyes";
    }
}

// From the last window of the template, whose group the eyes would belong to.
TEST_F(ObFlatPasswordTest, HasAnEyeThatArrowKeysDoNotReach) {
    for (const BOOL isBack : {FALSE, TRUE}) {
        HWND next = Item(1010);
        for (int step = 0; step < 20; ++step) {
            next = GetNextDlgGroupItem(dialog_->window, next, isBack);
            EXPECT_NE(0, GetDlgCtrlID(next)) << step;
        }
    }
}

TEST_F(ObFlatPasswordTest, TakesItsOtherWindowsWithIt) {
    const HWND others[] = {Eye(), Password().frameWindow, Password().tooltipWindow};
    DestroyWindow(Item(1003));
    for (const HWND other : others) EXPECT_FALSE(IsWindow(other));
    EXPECT_EQ(nullptr, Password().eyeButton);
    EXPECT_EQ(nullptr, Password().frameWindow);
    EXPECT_EQ(nullptr, Password().tooltipWindow);
}

TEST_F(ObFlatPasswordTest, LeavesAStockEditToAWindowThatOutlivesIt) {
    const HWND edit = CreateWindowExW(0, L"edit", L"secret", WS_CHILD | WS_VISIBLE | ES_PASSWORD,
                                      10, 10, 200, 24, dialog_->window, nullptr, nullptr, nullptr);
    const LONG_PTR stock = GetWindowLongPtrW(edit, GWLP_WNDPROC);
    {
        ObFlatPassword password(78);
        password.Attach(edit);
        EXPECT_NE(stock, GetWindowLongPtrW(edit, GWLP_WNDPROC));
    }
    EXPECT_EQ(stock, GetWindowLongPtrW(edit, GWLP_WNDPROC));
    EXPECT_EQ(nullptr, GetPropW(edit, L"PROP_EDIT_OBJECT"));
    EXPECT_EQ(nullptr, GetPropW(edit, L"PROP_PASSWORD_OBJECT"));
    DestroyWindow(edit);
}

// The owner of the tooltips is the window that the parent is on, which stays.
TEST_F(ObFlatPasswordTest, LeavesNoTooltipsOfAPageThatIsClosed) {
    const HWND page = CreateWindowExW(0, L"static", L"", WS_CHILD | WS_VISIBLE, 0, 0, 300, 100,
                                      dialog_->window, nullptr, nullptr, nullptr);
    const HWND edit = CreateWindowExW(0, L"edit", L"secret", WS_CHILD | WS_VISIBLE | ES_PASSWORD,
                                      10, 10, 200, 24, page, nullptr, nullptr, nullptr);
    ObFlatPassword password(78);
    password.Attach(edit);
    const HWND tips = password.tooltipWindow;
    ASSERT_TRUE(IsWindow(tips));
    EXPECT_EQ(dialog_->window, GetWindow(tips, GW_OWNER));
    DestroyWindow(page);
    EXPECT_FALSE(IsWindow(tips));
}

TEST_F(ObFlatPasswordTest, CountsTheEyesOfEachParent) {
    EXPECT_EQ(L"Eyeball 1", TextOfWindow(Eye(1003)));
    EXPECT_EQ(L"Eyeball 2", TextOfWindow(Eye(1007)));
    EXPECT_EQ(L"Eyeball 3", TextOfWindow(Eye(1008)));
    ObXFlatDlg other(OB_TEST_FIELDS, nullptr, 0, false);
    other.Create(nullptr);
    const auto& first = dynamic_cast<ObFlatPassword&>(*other.GetControl(1003));
    EXPECT_EQ(L"Eyeball 1", TextOfWindow(first.eyeButton));
}

TEST_F(ObFlatPasswordTest, HidesItsTextByAsterisks) { EXPECT_EQ(L'*', Character()); }

TEST_F(ObFlatPasswordTest, ShowsItsTextWhenTheEyeIsPressed) {
    PressEye();
    EXPECT_TRUE(Password().reveal);
    EXPECT_EQ(0, Character());
    EXPECT_EQ(0, GetWindowLongPtrW(Item(1003), GWL_STYLE) & ES_PASSWORD);
    PressEye();
    EXPECT_FALSE(Password().reveal);
    EXPECT_EQ(L'*', Character());
    EXPECT_EQ(L"secret", TextOfWindow(Item(1003)));
}

TEST_F(ObFlatPasswordTest, HasTheCaretAtTheEndOnceThePressedEyeIsPainted) {
    SendMessageW(Item(1003), EM_SETSEL, 0, 2);
    PressEye();
    EXPECT_TRUE(Password().focusAfterPaint);
    UpdateWindow(Eye());
    EXPECT_FALSE(Password().focusAfterPaint);
    EXPECT_EQ(Item(1003), GetFocus());
    EXPECT_EQ(6u, Caret());
}

TEST_F(ObFlatPasswordTest, OnlyTakesTheFocusOnADoubleClick) {
    SetFocus(Item(1001));
    SendMessageW(Eye(), WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(3, 3));
    EXPECT_FALSE(Password().reveal);
    EXPECT_TRUE(Password().focusAfterPaint);
    UpdateWindow(Eye());
    EXPECT_EQ(Item(1003), GetFocus());
}

// A dialog gives the focus on to a control; any other parent keeps it.
TEST_F(ObFlatPasswordTest, LeavesTheFocusToItsParentAfterToggling) {
    const ObLib::UniqueWindow parent(CreateWindowExW(0, L"static", L"", WS_POPUP | WS_VISIBLE, 0, 0,
                                                     300, 100, nullptr, nullptr, nullptr, nullptr));
    const HWND edit = CreateWindowExW(0, L"edit", L"secret", WS_CHILD | WS_VISIBLE | ES_PASSWORD,
                                      10, 10, 200, 24, parent.Get(), nullptr, nullptr, nullptr);
    ObFlatPassword password(78);
    password.Attach(edit);
    password.Toggle();
    EXPECT_EQ(parent.Get(), GetFocus());
    EXPECT_EQ(0, SendMessageW(edit, EM_GETPASSWORDCHAR, 0, 0));
    DestroyWindow(parent.Get());
    EXPECT_EQ(nullptr, password.eyeButton);
}

TEST_F(ObFlatPasswordTest, ShowsItsTextByAltAndF8) {
    SetFocus(Item(1003));
    SetKeys(true, true);
    SendMessageW(Item(1003), WM_SYSKEYDOWN, VK_F8, 0x20000001);
    EXPECT_TRUE(Password().reveal);
    EXPECT_EQ(Item(1003), GetFocus());
    EXPECT_EQ(6u, Caret());
    EXPECT_TRUE(GetUpdateRect(Eye(), nullptr, FALSE));
    SendMessageW(Item(1003), WM_SYSKEYDOWN, VK_F8, 0x60000001);
    EXPECT_TRUE(Password().reveal) << "the key repeats";
    SendMessageW(Item(1003), WM_KEYDOWN, VK_MENU, 1);
    EXPECT_FALSE(Password().reveal) << "Alt after F8";
}

TEST_F(ObFlatPasswordTest, DoesNothingByKeysWhileItIsDisabled) {
    EnableWindow(Item(1003), FALSE);
    SetKeys(true, true);
    SendMessageW(Item(1003), WM_SYSKEYDOWN, VK_F8, 0x20000001);
    EXPECT_FALSE(Password().reveal);
}

// As Windows' edit does; Wine's ignores the message.
LRESULT CALLBACK TurnPaintingOff(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                 DWORD_PTR) {
    if (message == WM_SETREDRAW) DefWindowProcW(window, message, wParam, lParam);
    return DefSubclassProc(window, message, wParam, lParam);
}

// Whoever fills a dialog turns the painting of its controls off meanwhile.
TEST_F(ObFlatPasswordTest, HasItsFrameAndEyeAfterItsPaintingWasTurnedOff) {
    SetWindowSubclass(Item(1003), &TurnPaintingOff, 1, 0);
    EnableWindow(Item(1003), FALSE);
    SendMessageW(Item(1003), WM_SETREDRAW, FALSE, 0);
    EXPECT_FALSE(IsWindowVisible(Item(1003)));
    EnableWindow(Item(1003), TRUE);
    SendMessageW(Item(1003), WM_SETREDRAW, TRUE, 0);
    EXPECT_TRUE(IsWindowVisible(Item(1003)));
    EXPECT_TRUE(IsWindowVisible(Password().frameWindow));
    EXPECT_TRUE(IsWindowVisible(Eye()));
    ShowWindow(Item(1003), SW_HIDE);
    SendMessageW(Item(1003), WM_SETREDRAW, TRUE, 0);
    EXPECT_TRUE(IsWindowVisible(Item(1003))) << "which shows it";
    EXPECT_TRUE(IsWindowVisible(Password().frameWindow));
    EXPECT_TRUE(IsWindowVisible(Eye()));
    printf("WM_SETREDRAW: a procedure of the test, as Wine's edit ignores it\n");
}

TEST_F(ObFlatPasswordTest, HasAnEyeInTheColourOfTextsInHighContrast) {
    isContrast = true;
    const COLORREF inverse = ~GetSysColor(COLOR_WINDOW) & 0xFFFFFF;
    const Pixels pixels = EyePixels();
    EXPECT_LT(0, std::ranges::count(pixels, inverse));
    EXPECT_LT(0, std::ranges::count(pixels, GetSysColor(COLOR_WINDOW)));
}

TEST_F(ObFlatPasswordTest, DoesNothingForOneOfTheTwoKeys) {
    SetFocus(Item(1003));
    SetKeys(true, false);
    SendMessageW(Item(1003), WM_SYSKEYDOWN, VK_MENU, 0x20000001);
    SetKeys(false, true);
    SendMessageW(Item(1003), WM_KEYDOWN, VK_F8, 1);
    SetKeys(true, true);
    SendMessageW(Item(1003), WM_SYSKEYDOWN, L'A', 0x20000001);
    EXPECT_FALSE(Password().reveal);
}

TEST_F(ObFlatPasswordTest, ShowsTheEyeOfItsState) {
    const Pixels hidden = EyePixels();
    EXPECT_EQ(Expected(ControlImage::EyeHidden), hidden);
    Password().Toggle();
    const Pixels visible = EyePixels();
    EXPECT_EQ(Expected(ControlImage::EyeVisible), visible);
    EXPECT_NE(hidden, visible);
}

TEST_F(ObFlatPasswordTest, KeepsItsEyeWhenTheFrameIsPainted) {
    const Pixels before = EyePixels();
    PaintNow(Password().frameWindow);
    EXPECT_EQ(before, ShownPixels());
}

// Whoever changes the edit's style: the eye catches up when it is painted.
TEST_F(ObFlatPasswordTest, FollowsTheEditsStyle) {
    SendMessageW(Item(1003), EM_SETPASSWORDCHAR, 0, 0);
    UpdateWindow(Eye());
    EXPECT_TRUE(Password().reveal);
    EXPECT_EQ(Expected(ControlImage::EyeVisible), EyePixels());
    SendMessageW(Item(1003), EM_SETPASSWORDCHAR, L'*', 0);
    UpdateWindow(Eye());
    EXPECT_FALSE(Password().reveal);
}

TEST_F(ObFlatPasswordTest, HasNoEyeWhileItIsDisabled) {
    EXPECT_FALSE(IsWindowVisible(Eye(1008))) << "from the start";
    EnableWindow(Item(1008), TRUE);
    EXPECT_TRUE(IsWindowVisible(Eye(1008)));
    EnableWindow(Item(1003), FALSE);
    EXPECT_FALSE(IsWindowVisible(Eye()));
    ShowWindow(Item(1003), SW_HIDE);
    EnableWindow(Item(1003), TRUE);
    EXPECT_FALSE(IsWindowVisible(Eye())) << "the field itself is hidden";
    ShowWindow(Item(1003), SW_SHOW);
    EXPECT_TRUE(IsWindowVisible(Eye()));
}

TEST_F(ObFlatPasswordTest, ShowsAndHidesItsEyeByPosition) {
    constexpr UINT kInPlace = SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE;
    SetWindowPos(Item(1003), nullptr, 0, 0, 0, 0, kInPlace | SWP_HIDEWINDOW);
    EXPECT_FALSE(IsWindowVisible(Eye()));
    SetWindowPos(Item(1003), nullptr, 0, 0, 0, 0, kInPlace | SWP_SHOWWINDOW);
    EXPECT_TRUE(IsWindowVisible(Eye()));
}

TEST_F(ObFlatPasswordTest, PaintsNoEyeWhileItIsDisabled) {
    EnableWindow(Item(1003), FALSE);
    ShowWindow(Eye(), SW_SHOW); // by somebody else
    const Pixels pixels = EyePixels();
    EXPECT_EQ(pixels.size(), static_cast<std::size_t>(std::ranges::count(pixels, 0xFFFFFFu)));
}

TEST_F(ObFlatPasswordTest, MovesItsEyeAlong) {
    SetWindowPos(Item(1003), nullptr, 30, 100, 80, 90, SWP_NOZORDER);
    const int width = RectInParent(Eye()).Width();
    EXPECT_EQ((PixelRect{28, 98, 112 + width, 192}), RectInParent(Password().frameWindow));
    EXPECT_EQ((PixelRect{110, 100, 110 + width, 190}), RectInParent(Eye()));
}

// The stock button paints by itself on these; the pixels stay those of the eye, before the next
// paint too, which each of them asks for.
TEST_F(ObFlatPasswordTest, KeepsItsEyeOnMessagesOfButtons) {
    struct Row {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
    };
    const Row kRows[] = {{BM_SETSTATE, TRUE, 0},
                         {BM_SETSTYLE, BS_DEFPUSHBUTTON, TRUE},
                         {BM_SETCHECK, BST_CHECKED, 0},
                         {WM_ENABLE, TRUE, 0},
                         {WM_SETFOCUS, 0, 0},
                         {WM_KILLFOCUS, 0, 0},
                         {WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"Another title")}};
    const Pixels expected = EyePixels();
    for (const Row& row : kRows) {
        ValidateRect(Eye(), nullptr);
        SendMessageW(Eye(), row.message, row.wParam, row.lParam);
        EXPECT_TRUE(GetUpdateRect(Eye(), nullptr, FALSE)) << row.message;
        EXPECT_EQ(expected, ShownPixels()) << row.message;
    }
    EXPECT_EQ(L"Another title", TextOfWindow(Eye()));
}

std::vector<HWND> reported;

void WINAPI RecordWinEvent(DWORD event, HWND window, LONG object, LONG child) {
    EXPECT_EQ(static_cast<DWORD>(EVENT_OBJECT_STATECHANGE), event);
    EXPECT_EQ(static_cast<LONG>(OBJID_CLIENT), object);
    EXPECT_EQ(CHILDID_SELF, child);
    reported.push_back(window);
}

TEST_F(ObFlatPasswordTest, ReportsEachToggleToScreenReaders) {
    const obtest::ImportPatch<decltype(&NotifyWinEvent)> patch("user32.dll", "NotifyWinEvent",
                                                               &RecordWinEvent);
    ASSERT_TRUE(patch.Ok());
    reported.clear();
    PressEye();
    EXPECT_EQ((std::vector<HWND>{Eye(), Item(1003)}), reported);
    Password().Toggle();
    EXPECT_EQ(4u, reported.size());
}

TEST_F(ObFlatPasswordTest, HidesItsTextAgainWhenItIsOpenedAgain) {
    PressEye();
    ASSERT_TRUE(Password().reveal);
    ASSERT_TRUE(Password().focusAfterPaint);
    DestroyWindow(dialog_->window);
    dialog_->Create(nullptr);
    EXPECT_FALSE(Password().reveal);
    EXPECT_FALSE(Password().focusAfterPaint);
    EXPECT_EQ(L'*', Character());
}

// The eye hasn't been painted since the style was changed.
TEST_F(ObFlatPasswordTest, TogglesWhatTheEditShows) {
    SendMessageW(Item(1003), EM_SETPASSWORDCHAR, 0, 0);
    Password().Toggle();
    EXPECT_FALSE(Password().reveal);
    EXPECT_EQ(L'*', Character());
}

TEST_F(ObFlatPasswordTest, HasATooltipFromTheFirstMoveOverItsEye) {
    const HWND tips = Password().tooltipWindow;
    ASSERT_TRUE(IsWindow(tips));
    EXPECT_EQ(0, SendMessageW(tips, TTM_GETTOOLCOUNT, 0, 0));
    SendMessageW(Eye(), WM_MOUSEMOVE, 0, MAKELPARAM(3, 3));
    SendMessageW(Eye(), WM_MOUSEMOVE, 0, MAKELPARAM(4, 3));
    EXPECT_EQ(1, SendMessageW(tips, TTM_GETTOOLCOUNT, 0, 0));
    EXPECT_EQ(500, SendMessageW(tips, TTM_GETDELAYTIME, TTDT_INITIAL, 0));
    wchar_t text[100] = {};
    TTTOOLINFOW tool{};
    tool.cbSize = TTTOOLINFOW_V2_SIZE;
    tool.hwnd = dialog_->window;
    tool.uId = reinterpret_cast<UINT_PTR>(Eye());
    tool.lpszText = text;
    SendMessageW(tips, TTM_GETTEXTW, 100, reinterpret_cast<LPARAM>(&tool));
    EXPECT_STREQ(L"Click to show or hide the password", text);
}

TEST_F(ObFlatPasswordTest, OutlivesItsWindows) {
    DestroyWindow(dialog_->window);
    EXPECT_EQ(nullptr, Password().window);
    EXPECT_EQ(nullptr, Password().eyeButton);
    EXPECT_EQ(nullptr, Password().frameWindow);
    const obtest::ImportPatch<decltype(&InvalidateRect)> patch("user32.dll", "InvalidateRect",
                                                               &RecordInvalidation);
    ASSERT_TRUE(patch.Ok());
    invalidated.clear();
    Password().Refresh();
    EXPECT_TRUE(invalidated.empty()) << "without a window the system takes all windows";
}

// What a field does that loses the focus: `called` runs.
std::function<void()> called;
LRESULT CALLBACK CallAtKillFocus(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                 UINT_PTR id, DWORD_PTR) {
    if (message == WM_KILLFOCUS) called();
    if (message == WM_NCDESTROY) RemoveWindowSubclass(window, &CallAtKillFocus, id);
    return DefSubclassProc(window, message, wParam, lParam);
}

HWND focused = nullptr; // what SetFocus was called with last
HWND WINAPI RecordFocus(HWND window) {
    static const auto real = reinterpret_cast<decltype(&SetFocus)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "SetFocus")));
    focused = window;
    return real(window);
}

TEST_F(ObFlatPasswordTest, MayEndWithItsDialogWhenTheFocusIsLostElsewhere) {
    const obtest::ImportPatch<decltype(&InvalidateRect)> invalidate("user32.dll", "InvalidateRect",
                                                                    &RecordInvalidation);
    const obtest::ImportPatch<decltype(&SetFocus)> focus("user32.dll", "SetFocus", &RecordFocus);
    ASSERT_TRUE(invalidate.Ok() && focus.Ok());
    SetFocus(Item(1001));
    called = [&] { DestroyWindow(dialog_->window); };
    SetWindowSubclass(Item(1001), &CallAtKillFocus, 1, 0);
    const HWND edit = Item(1003);
    invalidated.clear();
    PressEye();
    EXPECT_FALSE(IsWindow(edit));
    EXPECT_EQ(edit, focused) << "and nothing after it: null would take the thread's focus";
    EXPECT_EQ(0, std::ranges::count(invalidated, HWND{})) << "all windows of the desktop";
    EXPECT_FALSE(Password().focusAfterPaint);
}

TEST_F(ObFlatPasswordTest, TakesNoFocusWithoutAWindow) {
    SendMessageW(Eye(), WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(3, 3));
    const obtest::ImportPatch<decltype(&BeginPaint)> paint("user32.dll", "BeginPaint",
                                                           &BeginAndDestroyParent);
    const obtest::ImportPatch<decltype(&SetFocus)> focus("user32.dll", "SetFocus", &RecordFocus);
    ASSERT_TRUE(paint.Ok() && focus.Ok());
    const HWND eye = Eye();
    focused = eye;
    UpdateWindow(eye);
    EXPECT_FALSE(IsWindow(eye)) << "it has gone while it was painted";
    EXPECT_EQ(eye, focused) << "nothing was called";
}

TEST_F(ObFlatPasswordTest, ClosesItsEyeOnDemand) {
    SendMessageW(Eye(), WM_CLOSE, 0, 0);
    EXPECT_EQ(nullptr, Eye());
    SetWindowPos(Item(1003), nullptr, 30, 100, 80, 40, SWP_NOZORDER);
    EXPECT_EQ(28, RectInParent(Password().frameWindow).left) << "the frame still follows";
    Password().Toggle();
    EXPECT_EQ(0, Character());
    EnableWindow(Item(1003), FALSE);
    EXPECT_EQ(nullptr, Eye()) << "none is made again";
}

// ---- what screen readers get

VARIANT Self() {
    VARIANT self{};
    self.vt = VT_I4;
    self.lVal = CHILDID_SELF;
    return self;
}

using Accessible = ObLib::ComPtr<IAccessible>;

Accessible AccessibleOf(HWND window) {
    void* object = nullptr;
    AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                               &object);
    return Accessible(static_cast<IAccessible*>(object));
}

std::wstring Taken(BSTR text) {
    const std::wstring copy = text != nullptr ? text : L"";
    SysFreeString(text);
    return copy;
}

class PasswordAccessibleTest : public ObFlatPasswordTest {
protected:
    void SetUp() override {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        ObFlatPasswordTest::SetUp();
        eye_ = AccessibleOf(Eye());
        ASSERT_TRUE(eye_);
    }
    void TearDown() override {
        eye_.Reset();
        ObFlatPasswordTest::TearDown();
        CoUninitialize();
    }
    LONG State() const {
        VARIANT state{};
        EXPECT_EQ(S_OK, eye_->get_accState(Self(), &state));
        return state.lVal;
    }

    Accessible eye_;
};

TEST_F(PasswordAccessibleTest, NamesTheEye) {
    BSTR name = nullptr;
    EXPECT_EQ(S_OK, eye_->get_accName(Self(), &name));
    EXPECT_EQ(L"Show or hide the password", Taken(name));
    VARIANT role{};
    EXPECT_EQ(S_OK, eye_->get_accRole(Self(), &role));
    EXPECT_EQ(ROLE_SYSTEM_PUSHBUTTON, role.lVal);
    BSTR action = nullptr;
    EXPECT_EQ(S_OK, eye_->get_accDefaultAction(Self(), &action));
    EXPECT_NE(L"", Taken(action));
    BSTR keys = nullptr;
    EXPECT_EQ(S_OK, eye_->get_accKeyboardShortcut(Self(), &keys));
    EXPECT_EQ(L"Alt+F8", Taken(keys));
    BSTR value = nullptr;
    EXPECT_EQ(S_FALSE, eye_->get_accValue(Self(), &value)) << "never the password";
}

TEST_F(PasswordAccessibleTest, IsPressedWhileTheTextIsShown) {
    EXPECT_EQ(0, State() & (STATE_SYSTEM_PRESSED | STATE_SYSTEM_UNAVAILABLE));
    EXPECT_EQ(S_OK, eye_->accDoDefaultAction(Self()));
    EXPECT_TRUE(Password().reveal);
    EXPECT_NE(0, State() & STATE_SYSTEM_PRESSED);
    EXPECT_EQ(S_OK, eye_->accDoDefaultAction(Self()));
    EXPECT_FALSE(Password().reveal);
}

TEST_F(PasswordAccessibleTest, IsInvisibleAndIdleWhileTheFieldIsDisabled) {
    EnableWindow(Item(1003), FALSE);
    EXPECT_NE(0, State() & STATE_SYSTEM_INVISIBLE);
    EXPECT_NE(0, State() & STATE_SYSTEM_UNAVAILABLE);
    EXPECT_EQ(S_OK, eye_->accDoDefaultAction(Self()));
    EXPECT_FALSE(Password().reveal);
}

TEST_F(PasswordAccessibleTest, HasThePlaceOfItsWindowAndNoChildren) {
    LONG left = 0, top = 0, width = 0, height = 0;
    EXPECT_EQ(S_OK, eye_->accLocation(&left, &top, &width, &height, Self()));
    RECT rect{};
    GetWindowRect(Eye(), &rect);
    EXPECT_EQ(rect.left, left);
    EXPECT_EQ(rect.top, top);
    EXPECT_EQ(rect.right - rect.left, width);
    EXPECT_EQ(rect.bottom - rect.top, height);
    LONG count = 9;
    EXPECT_EQ(S_OK, eye_->get_accChildCount(&count));
    EXPECT_EQ(0, count);
    VARIANT child = Self();
    child.lVal = 1;
    BSTR name = nullptr;
    EXPECT_EQ(E_INVALIDARG, eye_->get_accName(child, &name));
}

TEST_F(PasswordAccessibleTest, EndsWithItsWindow) {
    dialog_.reset();
    BSTR name = nullptr;
    EXPECT_EQ(CO_E_OBJNOTCONNECTED, eye_->get_accName(Self(), &name));
    EXPECT_EQ(CO_E_OBJNOTCONNECTED, eye_->accDoDefaultAction(Self()));
}

} // namespace
