// The flat switch: clicks, drags, keys, colours, and what screen readers get.
#include "ObLibX/src/controls/ObCustSwitch.h"

#include <oleacc.h>

#include "ObLib/Src/Win32/ComResources.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLibX/controls/ControlFixture.h"
#include "tests/unit/ObLibX/controls/ControlTestIds.h"

namespace {

using namespace ObLibX;

constexpr int kLabel = 1100;
constexpr int kSwitch = 1107;
constexpr int kStock = 1199;

constexpr COLORREF kAccent = 0xC0761B;
constexpr COLORREF kGray = 0xA8A8A8;
constexpr COLORREF kWhite = 0xFFFFFF;

using Commands = std::vector<std::pair<int, int>>;

class FlatSwitch : public ControlsTest {
protected:
    void SetUp() override {
        ControlsTest::SetUp();
        Dress({{kSwitch, &Make<ObFlatToggleBtn>}});
        Open(OB_TEST_TOGGLES);
        SetFocus(Item(kStock));
        dialog_->commands.clear();
    }
    ObFlatToggleBtn& Switch() { return Object<ObFlatToggleBtn>(kSwitch); }
    bool IsOn() const { return Send(kSwitch, BM_GETCHECK) == BST_CHECKED; }
    std::wstring Text() const {
        wchar_t text[20] = {};
        GetWindowTextW(Item(kSwitch), text, 20);
        return text;
    }
    void Mouse(UINT message, int x) { Send(kSwitch, message, 0, MAKELPARAM(x, 5)); }
    // A pixel of the track, `share` percent of its way, in the middle of its height.
    COLORREF Track(int share) {
        PixelsOf(kSwitch);
        const PixelRect track = Switch().trackRectangle;
        return PixelOf(kSwitch, track.left + track.Width() * share / 100, track.Centre().y);
    }
    Commands Clicks() const {
        Commands clicks;
        for (const auto& command : dialog_->commands) {
            if (command.second == BN_CLICKED) clicks.push_back(command);
        }
        return clicks;
    }
};

TEST_F(FlatSwitch, HasItsSizeInDialogUnitsAndItsStateAsText) {
    RECT units{0, 0, 44, 8};
    MapDialogRect(dialog_->window, &units);
    EXPECT_EQ(units.right + 2 * Scale(2), SizeOf(kSwitch).cx);
    EXPECT_EQ(units.bottom + 2 * Scale(2), SizeOf(kSwitch).cy);
    EXPECT_EQ(L"Off", Text());
    EXPECT_EQ(-1, Switch().lastMouseX);
    Send(kSwitch, BM_SETCHECK, BST_CHECKED);
    EXPECT_EQ(L"On", Text());
    Send(kSwitch, BM_SETCHECK, BST_UNCHECKED);
    EXPECT_EQ(L"Off", Text());
    EXPECT_TRUE(Clicks().empty());
}

// A check box of two states takes any number but 0 for checked.
TEST_F(FlatSwitch, HasTheTextOfItsStateWhateverItIsSetTo) {
    Send(kSwitch, BM_SETCHECK, BST_INDETERMINATE);
    EXPECT_TRUE(IsOn());
    EXPECT_EQ(L"On", Text());
    EXPECT_EQ(kAccent, Track(50));
    Send(kSwitch, BM_SETCHECK, BST_UNCHECKED);
    EXPECT_EQ(L"Off", Text());
}

TEST_F(FlatSwitch, IsOffInTheThirdStateOfItsBox) {
    SetWindowLongPtrW(Item(kSwitch), GWL_STYLE,
                      (GetWindowLongPtrW(Item(kSwitch), GWL_STYLE) & ~BS_TYPEMASK) | BS_AUTO3STATE);
    Send(kSwitch, BM_SETCHECK, BST_INDETERMINATE);
    ASSERT_EQ(BST_INDETERMINATE, Send(kSwitch, BM_GETCHECK));
    EXPECT_EQ(L"Off", Text());
    EXPECT_EQ(kWhite, Track(50));
    Send(kSwitch, BM_CLICK);
    EXPECT_TRUE(IsOn());
    EXPECT_EQ(L"On", Text());
}

TEST_F(FlatSwitch, FlipsByAClickWithoutMoving) {
    for (const bool isOn : {true, false}) {
        Mouse(WM_LBUTTONDOWN, 5);
        EXPECT_TRUE(Switch().isDown);
        EXPECT_EQ(Item(kSwitch), GetCapture());
        EXPECT_EQ(Item(kSwitch), GetFocus());
        Mouse(WM_MOUSEMOVE, 5); // the system repeats the place
        Mouse(WM_LBUTTONUP, 5);
        EXPECT_EQ(isOn, IsOn());
        EXPECT_EQ(nullptr, GetCapture());
        EXPECT_FALSE(Switch().isDown);
    }
    EXPECT_EQ((Commands{{kSwitch, BN_CLICKED}, {kSwitch, BN_CLICKED}}), Clicks());
}

TEST_F(FlatSwitch, TakesTheSideOfTheThumbWhenItIsDragged) {
    PixelsOf(kSwitch);
    const PixelRect track = Switch().trackRectangle;
    Mouse(WM_LBUTTONDOWN, track.left + 2);
    Mouse(WM_MOUSEMOVE, track.right - 1);
    EXPECT_EQ(track.right - 1, Switch().lastMouseX);
    EXPECT_EQ(track.right, Switch().thumbRectangle.right);
    EXPECT_TRUE(Switch().newState);
    EXPECT_FALSE(IsOn()) << "not before the button is up";
    Mouse(WM_MOUSEMOVE, track.left + 4);
    EXPECT_FALSE(Switch().newState);
    Mouse(WM_LBUTTONUP, track.left + 4);
    EXPECT_FALSE(IsOn()) << "dragged there and back";
    EXPECT_TRUE(Clicks().empty()) << "nothing has changed";
    Mouse(WM_LBUTTONDOWN, track.left + 2);
    Mouse(WM_MOUSEMOVE, track.Centre().x + 2);
    Mouse(WM_LBUTTONUP, track.Centre().x + 2);
    EXPECT_TRUE(IsOn());
    EXPECT_EQ(1u, Clicks().size());
    EXPECT_EQ(-1, Switch().lastMouseX);
}

TEST_F(FlatSwitch, FollowsTheMouseInsideItsTrackOnly) {
    PixelsOf(kSwitch);
    const PixelRect track = Switch().trackRectangle;
    Mouse(WM_MOUSEMOVE, track.left + 5);
    EXPECT_EQ(-1, Switch().lastMouseX) << "no button is down";
    Mouse(WM_LBUTTONDOWN, track.left + 5);
    Mouse(WM_MOUSEMOVE, track.left - 1);
    Mouse(WM_MOUSEMOVE, track.right);
    EXPECT_EQ(-1, Switch().lastMouseX);
    Mouse(WM_MOUSEMOVE, track.left);
    EXPECT_EQ(track.left, Switch().lastMouseX);
    Mouse(WM_LBUTTONUP, track.left);
}

TEST_F(FlatSwitch, ChangesOnceBySpace) {
    Send(kSwitch, WM_KEYUP, VK_SPACE);
    EXPECT_FALSE(IsOn()) << "pressed elsewhere";
    Send(kSwitch, WM_KEYDOWN, VK_SPACE);
    Send(kSwitch, WM_KEYDOWN, VK_SPACE);
    EXPECT_FALSE(IsOn());
    Send(kSwitch, WM_KEYUP, VK_SPACE);
    EXPECT_TRUE(IsOn());
    EXPECT_EQ((Commands{{kSwitch, BN_CLICKED}}), Clicks());
    Send(kSwitch, BM_CLICK);
    EXPECT_FALSE(IsOn());
    EXPECT_EQ(2u, Clicks().size());
    SetFocus(Item(kSwitch));
    Send(kSwitch, WM_KEYDOWN, VK_SPACE);
    SetFocus(Item(kStock));
    Send(kSwitch, WM_KEYUP, VK_SPACE);
    EXPECT_FALSE(IsOn()) << "the focus has gone meanwhile";
}

TEST_F(FlatSwitch, IsNotChangedWhenTheCaptureIsLost) {
    Mouse(WM_LBUTTONDOWN, 5);
    SetCapture(dialog_->window);
    EXPECT_FALSE(Switch().isDown);
    Mouse(WM_LBUTTONUP, 5);
    EXPECT_FALSE(IsOn());
    ReleaseCapture();
    Mouse(WM_LBUTTONDOWN, 5);
    EnableWindow(Item(kSwitch), FALSE);
    EXPECT_FALSE(Switch().isDown);
    EXPECT_TRUE(Clicks().empty());
}

TEST_F(FlatSwitch, IsNotChangedWhileItIsDisabled) {
    EnableWindow(Item(kSwitch), FALSE);
    Send(kSwitch, BM_CLICK);
    EXPECT_FALSE(IsOn());
    EnableWindow(Item(kSwitch), TRUE);
    Send(kSwitch, WM_KEYDOWN, VK_SPACE);
    EnableWindow(Item(kSwitch), FALSE);
    EnableWindow(Item(kSwitch), TRUE);
    Send(kSwitch, WM_KEYUP, VK_SPACE);
    EXPECT_FALSE(IsOn()) << "disabled while Space was down";
    EXPECT_TRUE(Clicks().empty());
}

TEST_F(FlatSwitch, IsIdleWhenItsDialogIsOpenedAgain) {
    PixelsOf(kSwitch);
    const PixelRect track = Switch().trackRectangle;
    Mouse(WM_LBUTTONDOWN, track.left + 2);
    Mouse(WM_MOUSEMOVE, track.right - 1);
    DestroyWindow(dialog_->window);
    dialog_->Create(nullptr);
    ShowWindow(dialog_->window, SW_SHOW);
    EXPECT_FALSE(Switch().isDown);
    EXPECT_EQ(-1, Switch().lastMouseX);
    EXPECT_EQ(kGray, Track(10)) << "the thumb";
    EXPECT_EQ(kWhite, Track(50)) << "not the colour of a drag";
    Send(kSwitch, WM_KEYDOWN, VK_SPACE);
    DestroyWindow(dialog_->window);
    dialog_->Create(nullptr);
    Send(kSwitch, WM_KEYUP, VK_SPACE);
    EXPECT_FALSE(IsOn()) << "pressed in the window before";
}

// What a control does when it loses the focus: `called` runs.
std::function<void()> called;
LRESULT CALLBACK CallAtKillFocus(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                 UINT_PTR id, DWORD_PTR) {
    if (message == WM_KILLFOCUS) called();
    if (message == WM_NCDESTROY) RemoveWindowSubclass(window, &CallAtKillFocus, id);
    return DefSubclassProc(window, message, wParam, lParam);
}

// As a message box that is shown by the control that had the focus: the box gets the release.
TEST_F(FlatSwitch, IsNotDraggedAfterAPressThatTheFocusHasEnded) {
    called = [&] {
        EnableWindow(dialog_->window, FALSE);
        ReleaseCapture();
        EnableWindow(dialog_->window, TRUE);
    };
    SetWindowSubclass(Item(kStock), &CallAtKillFocus, 1, 0);
    Mouse(WM_LBUTTONDOWN, 5);
    EXPECT_FALSE(Switch().isDown);
    EXPECT_EQ(nullptr, GetCapture());
    Mouse(WM_MOUSEMOVE, Switch().trackRectangle.right - 1);
    EXPECT_EQ(-1, Switch().lastMouseX);
}

TEST_F(FlatSwitch, MayEndWithItsDialogWhenTheFocusIsLostElsewhere) {
    called = [&] { DestroyWindow(dialog_->window); };
    SetWindowSubclass(Item(kStock), &CallAtKillFocus, 1, 0);
    const HWND window = Item(kSwitch);
    SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(nullptr, GetCapture());
}

TEST_F(FlatSwitch, HasItsColoursByState) {
    EXPECT_EQ(kWhite, PixelOf(kSwitch, 0, 0));
    EXPECT_EQ(kGray, Track(10)) << "the thumb";
    EXPECT_EQ(kWhite, Track(50));
    const PixelRect track = Switch().trackRectangle;
    EXPECT_EQ(kGray, PixelOf(kSwitch, track.right - 1, track.top));
    EXPECT_EQ(kGray, PixelOf(kSwitch, track.right - 2, track.Centre().y));
    EXPECT_EQ(kWhite, PixelOf(kSwitch, track.right - 3, track.Centre().y));
    Send(kSwitch, BM_SETCHECK, BST_CHECKED);
    EXPECT_EQ(kAccent, Track(50));
    EXPECT_EQ(kGray, Track(95)) << "the thumb";
    Mouse(WM_LBUTTONDOWN, track.right - 5);
    EXPECT_EQ(kAccent, Track(50)) << "not dragged yet";
    Mouse(WM_MOUSEMOVE, track.Centre().x);
    EXPECT_EQ(0xFF8080u, Track(20));
    EXPECT_EQ(0xFF8080u, Track(80));
    EXPECT_EQ(kGray, Track(50));
    Mouse(WM_MOUSEMOVE, track.left);
    Mouse(WM_LBUTTONUP, track.left);
    EnableWindow(Item(kSwitch), FALSE);
    EXPECT_EQ(0xE0E0E0u, Track(50));
    EXPECT_EQ(0xA6A6A6u, Track(5));
    EXPECT_EQ(0x808080u, TextOf(kSwitch).color);
}

TEST_F(FlatSwitch, HasTheSystemsColoursInHighContrast) {
    Fakes().isContrast = true;
    Switch().Refresh();
    const COLORREF background = GetSysColor(COLOR_WINDOW);
    const COLORREF inverse = ~background & 0xFFFFFF;
    EXPECT_EQ(background, Track(50));
    EXPECT_EQ(inverse, Track(10));
    EXPECT_EQ(background, PixelOf(kSwitch, 0, 0));
    EXPECT_EQ(inverse, PixelOf(kSwitch, Switch().trackRectangle.right - 1,
                               Switch().trackRectangle.Centre().y));
    Send(kSwitch, BM_SETCHECK, BST_CHECKED);
    EXPECT_EQ(inverse, Track(95));
    EXPECT_EQ(background, Track(50));
}

TEST_F(FlatSwitch, ShowsItsTextWhole) {
    for (const auto state : {BST_CHECKED, BST_UNCHECKED}) {
        Send(kSwitch, BM_SETCHECK, state);
        const DrawnText text = TextOf(kSwitch);
        RECT needed{};
        const ClientDc dc(Item(kSwitch));
        const HGDIOBJ old = SelectObject(dc.Get(), Switch().GetControlFont());
        DrawTextW(dc.Get(), text.text.c_str(), -1, &needed, DT_CALCRECT | DT_SINGLELINE);
        SelectObject(dc.Get(), old);
        EXPECT_LE(needed.right, text.rect.right - text.rect.left) << text.text;
        EXPECT_LE(text.rect.right, Switch().trackRectangle.left);
    }
}

TEST_F(FlatSwitch, ShowsItsFocusAroundAll) {
    HideCues(kSwitch, 0);
    const auto before = PixelsOf(kSwitch);
    SetFocus(Item(kSwitch));
    EXPECT_NE(before, PixelsOf(kSwitch));
    const SIZE size = SizeOf(kSwitch);
    EXPECT_EQ((PixelRect{0, 0, size.cx, size.cy}), Switch().focusRectangle);
    SetFocus(Item(kStock));
    EXPECT_EQ(before, PixelsOf(kSwitch));
}

TEST_F(FlatSwitch, PaintsOverWhatTheStockCheckBoxPaints) {
    const auto before = PixelsOf(kSwitch);
    Send(kSwitch, BM_SETSTATE, TRUE);
    EXPECT_EQ(before, ShownPixels(kSwitch));
    Send(kSwitch, BM_SETSTATE, FALSE);
    Send(kSwitch, WM_MOUSEMOVE);
    Send(kSwitch, WM_MOUSELEAVE);
    EXPECT_EQ(before, ShownPixels(kSwitch));
    Send(kSwitch, BM_SETCHECK, BST_CHECKED);
    Send(kSwitch, BM_SETCHECK, BST_UNCHECKED);
    EXPECT_EQ(before, ShownPixels(kSwitch));
    EnableWindow(Item(kSwitch), FALSE);
    EnableWindow(Item(kSwitch), TRUE);
    EXPECT_EQ(before, ShownPixels(kSwitch));
}

TEST_F(FlatSwitch, MayEndWithItsDialogWhileItNotifies) {
    dialog_->onCommand = [&] { DestroyWindow(dialog_->window); };
    const HWND window = Item(kSwitch);
    SendMessageW(window, BM_CLICK, 0, 0);
    EXPECT_FALSE(IsWindow(window));
}

class SwitchForReaders : public FlatSwitch {
protected:
    void SetUp() override {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        FlatSwitch::SetUp();
        self_.vt = VT_I4;
        ASSERT_EQ(S_OK, AccessibleObjectFromWindow(Item(kSwitch), static_cast<DWORD>(OBJID_CLIENT),
                                                   __uuidof(IAccessible),
                                                   reinterpret_cast<void**>(object_.Put())));
    }
    void TearDown() override {
        object_.Reset();
        FlatSwitch::TearDown();
        CoUninitialize();
    }
    std::wstring Name() {
        BSTR name = nullptr;
        EXPECT_EQ(S_OK, object_->get_accName(self_, &name));
        const std::wstring copy = name != nullptr ? name : L"";
        SysFreeString(name);
        return copy;
    }
    LONG State() {
        VARIANT number{};
        EXPECT_EQ(S_OK, object_->get_accState(self_, &number));
        return number.lVal;
    }
    static void Pump() {
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
    VARIANT self_{};
    ObLib::ComPtr<IAccessible> object_;
};

TEST_F(SwitchForReaders, IsACheckBoxNamedByTheLabelBeforeIt) {
    EXPECT_EQ(L"Sound & light:", Name());
    VARIANT number{};
    EXPECT_EQ(S_OK, object_->get_accRole(self_, &number));
    EXPECT_EQ(ROLE_SYSTEM_CHECKBUTTON, number.lVal);
    EXPECT_EQ(0, State() & STATE_SYSTEM_CHECKED);
    BSTR action = nullptr;
    EXPECT_EQ(S_OK, object_->get_accDefaultAction(self_, &action));
    EXPECT_NE(0u, SysStringLen(action));
    SysFreeString(action);
    EXPECT_EQ(S_OK, object_->accDoDefaultAction(self_));
    Pump();
    EXPECT_TRUE(IsOn());
    EXPECT_NE(0, State() & STATE_SYSTEM_CHECKED);
    dialog_.reset();
    EXPECT_EQ(CO_E_OBJNOTCONNECTED, object_->get_accState(self_, &number));
}

TEST_F(SwitchForReaders, HasItsTextForANameWithoutALabel) {
    DestroyWindow(Item(kLabel));
    EXPECT_EQ(L"Off", Name());
}

TEST_F(SwitchForReaders, StaysAsItIsWhileDisabled) {
    EXPECT_EQ(S_OK, object_->accDoDefaultAction(self_));
    EnableWindow(Item(kSwitch), FALSE); // before the click arrives
    Pump();
    EXPECT_FALSE(IsOn());
    EXPECT_EQ(S_OK, object_->accDoDefaultAction(self_));
    Pump();
    EXPECT_FALSE(IsOn());
    EXPECT_TRUE(Clicks().empty());
}

} // namespace
