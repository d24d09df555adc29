// Panels of a dialog that are scrolled by real scroll bars and by the wheel.
#include "ObLibX/src/dialog/DialogScrolling.h"

#include <commctrl.h>

#include <algorithm>
#include <functional>

#include "tests/support/ImportPatch.h"
#include "tests/unit/ObLibX/dialog/DialogFixture.h"

namespace {

using namespace ObLibX;

constexpr PixelRect kTopLeft{0, 0, 50, 50}; // of the first area

// Two areas, the second one added first and everywhere.
class ScrolledDialog : public RecordingDialog {
public:
    ScrolledDialog() : ScrolledDialog(true) {}
    explicit ScrolledDialog(bool hasAreaEverywhere) : RecordingDialog(OB_TEST_SCROLLED) {
        Open();
        ShowWindow(window, SW_SHOWNA);
        if (hasAreaEverywhere) AddArea(2002, {});
        AddArea(2001, kTopLeft);
    }
    LRESULT OnOtherMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        others.push_back(message);
        return ObXDlg::OnOtherMessage(message, wParam, lParam);
    }
    // Whether a message came to OnOtherMessage.
    bool IsOther(UINT message) const { return std::ranges::find(others, message) != others.end(); }
    void OnScroll(std::int64_t position, std::intptr_t cookie) override {
        scrolled.emplace_back(position, cookie);
        if (duringScroll) std::exchange(duringScroll, nullptr)();
    }
    HWND Bar(int id) const { return GetItem(id, true); }
    int Position(int id) const { return GetScrollPos(Bar(id), SB_CTL); }
    void Press(int id, int code) {
        Send(WM_VSCROLL, static_cast<WPARAM>(code), reinterpret_cast<LPARAM>(Bar(id)));
    }
    // A turn of the wheel over a point of the dialog's client area.
    void Turn(int x, int y, int delta, WORD keys = 0) {
        POINT point{x, y};
        ClientToScreen(window, &point);
        Send(WM_MOUSEWHEEL, MAKEWPARAM(keys, delta), MAKELPARAM(point.x, point.y));
    }

    using Scrolls = std::vector<std::pair<std::int64_t, std::intptr_t>>;
    Scrolls scrolled;
    std::vector<UINT> others;
    std::function<void()> duringScroll;

private:
    void AddArea(int id, const PixelRect& rectangle) {
        SCROLLINFO info{sizeof info, SIF_ALL, 0, 99, 30, 0, 0};
        SetScrollInfo(Bar(id), SB_CTL, &info, FALSE);
        Scrolling().Add(id, {this, id, Bar(id), GetItem(1001, true), {100, 30}, 10, rectangle});
    }
};

using Scrolls = ScrolledDialog::Scrolls;

class DialogScrollingTest : public DialogTest {};

TEST_F(DialogScrollingTest, FollowsTheBar) {
    ScrolledDialog dialog;
    EXPECT_EQ(2u, dialog.Scrolling().Count());
    dialog.Press(2001, SB_LINEDOWN);
    dialog.Press(2001, SB_PAGEDOWN);
    dialog.Press(2001, SB_BOTTOM);
    dialog.Press(2001, SB_LINEDOWN);
    dialog.Press(2001, SB_TOP);
    dialog.Press(2001, SB_ENDSCROLL);
    dialog.Press(2002, SB_LINEDOWN);
    const Scrolls expected{{1, 2001}, {31, 2001}, {70, 2001}, {70, 2001}, {0, 2001}, {1, 2002}};
    EXPECT_EQ(expected, dialog.scrolled);
    EXPECT_EQ(0, dialog.Position(2001));
    EXPECT_EQ(1, dialog.Position(2002));
}

TEST_F(DialogScrollingTest, LeavesBarsWithoutAnAreaToTheDialog) {
    ScrolledDialog dialog(false);
    dialog.Press(2001, SB_LINEDOWN);
    EXPECT_FALSE(dialog.IsOther(WM_VSCROLL));
    dialog.Press(2002, SB_LINEDOWN);
    EXPECT_TRUE(dialog.IsOther(WM_VSCROLL));
    dialog.others.clear();
    dialog.Send(WM_VSCROLL, SB_LINEDOWN, 0);
    EXPECT_TRUE(dialog.IsOther(WM_VSCROLL)) << "the dialog's own bar";
    EXPECT_EQ((Scrolls{{1, 2001}}), dialog.scrolled);
}

TEST_F(DialogScrollingTest, LeavesTheWheelBesideItsAreasToTheDialog) {
    ScrolledDialog dialog(false);
    dialog.Turn(10, 10, -120);
    EXPECT_FALSE(dialog.IsOther(WM_MOUSEWHEEL));
    dialog.Turn(100, 10, -120);
    EXPECT_TRUE(dialog.IsOther(WM_MOUSEWHEEL));
    EXPECT_EQ((Scrolls{{1, 2001}}), dialog.scrolled);
}

// A bar whose thumb is held at a position.
int heldThumb = 0;
LRESULT CALLBACK AnswerHeldThumb(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                 DWORD_PTR) {
    const LRESULT result = DefSubclassProc(window, message, wParam, lParam);
    if (message == SBM_GETSCROLLINFO) reinterpret_cast<SCROLLINFO*>(lParam)->nTrackPos = heldThumb;
    return result;
}

TEST_F(DialogScrollingTest, EndsAtTheLastPositionOfAThumbWhoseTargetIsSlow) {
    ScrolledDialog dialog;
    SetWindowSubclass(dialog.Bar(2001), &AnswerHeldThumb, 1, 0);
    const auto drag = [&](int position) {
        heldThumb = position;
        dialog.Press(2001, SB_THUMBTRACK);
    };
    dialog.duringScroll = [&] {
        drag(20);
        drag(35);
    };
    drag(10);
    EXPECT_EQ((Scrolls{{10, 2001}, {35, 2001}}), dialog.scrolled);
    EXPECT_EQ(35, dialog.Position(2001));
    drag(90);
    EXPECT_EQ(70, dialog.scrolled.back().first) << "the last position that there is";
}

using DeletedDialog = DeletedAtOnce<ScrolledDialog>;

// Whether a dialog may be deleted by the target of its area.
void DeleteDuringScroll(const std::function<void(ScrolledDialog& dialog)>& scroll) {
    DeletedDialog dialog;
    dialog->duringScroll = [&] { dialog.Delete(); };
    scroll(*dialog.operator->());
    EXPECT_TRUE(dialog.IsDeleted());
    ScrolledDialog next;
    next.Turn(10, 10, -120);
    EXPECT_EQ((Scrolls{{1, 2001}}), next.scrolled) << "the guard is down";
}

TEST_F(DialogScrollingTest, MayEndWithItsDialogInATarget) {
    DeleteDuringScroll([](ScrolledDialog& dialog) { dialog.Press(2001, SB_LINEDOWN); });
    DeleteDuringScroll([](ScrolledDialog& dialog) { dialog.Turn(10, 10, -120); });
}

TEST_F(DialogScrollingTest, EndsAtTheLastPositionOfATargetThatIsSlow) {
    ScrolledDialog dialog;
    dialog.duringScroll = [&] {
        dialog.Press(2001, SB_LINEDOWN);
        dialog.Press(2001, SB_LINEDOWN);
    };
    dialog.Press(2001, SB_LINEDOWN);
    EXPECT_EQ((Scrolls{{1, 2001}, {3, 2001}}), dialog.scrolled);
    EXPECT_EQ(3, dialog.Position(2001));
}

TEST_F(DialogScrollingTest, KeepsThePositionWhenItsAreaIsReplacedMeanwhile) {
    ScrolledDialog dialog;
    dialog.duringScroll = [&] {
        dialog.Press(2001, SB_LINEDOWN);
        dialog.Press(2001, SB_LINEDOWN);
        dialog.Scrolling().Add(
            2001, {&dialog, 7, dialog.Bar(2001), nullptr, {90, 30}, 10, {0, 0, 50, 50}});
    };
    dialog.Press(2001, SB_LINEDOWN);
    EXPECT_EQ((Scrolls{{1, 2001}, {3, 7}}), dialog.scrolled);
}

TEST_F(DialogScrollingTest, FollowsTheWheelOverTheFirstAreaThatIsHit) {
    ScrolledDialog dialog;
    dialog.Turn(10, 10, -120);
    dialog.Turn(10, 10, -360);
    dialog.Turn(100, 10, -120);
    dialog.Turn(10, 10, 120);
    EXPECT_EQ((Scrolls{{1, 2001}, {2, 2001}, {1, 2002}, {1, 2001}}), dialog.scrolled);
    dialog.Turn(10, 10, 120);
    dialog.Turn(10, 10, 120);
    EXPECT_EQ(5u, dialog.scrolled.size()) << "at the top already";
    EXPECT_EQ(0, dialog.Position(2001));
}

TEST_F(DialogScrollingTest, DropsTheWheelWhileTheBarIsHidden) {
    ScrolledDialog dialog;
    ShowWindow(dialog.Bar(2001), SW_HIDE);
    dialog.Turn(10, 10, -120);
    EXPECT_TRUE(dialog.scrolled.empty());
    ShowWindow(dialog.Bar(2001), SW_SHOWNA);
    dialog.Turn(10, 10, -120);
    EXPECT_EQ(1u, dialog.scrolled.size());
}

TEST_F(DialogScrollingTest, DropsTheWheelAfterATurnWithCtrlUntilABarIsUsed) {
    for (const WORD key : {MK_CONTROL, MK_SHIFT}) {
        ScrolledDialog dialog;
        dialog.Turn(10, 10, -120, key);
        dialog.Turn(10, 10, -120);
        dialog.Turn(100, 10, -120);
        EXPECT_TRUE(dialog.scrolled.empty());
        dialog.Press(2002, SB_LINEDOWN);
        dialog.Turn(10, 10, -120);
        EXPECT_EQ((Scrolls{{1, 2002}, {1, 2001}}), dialog.scrolled);
    }
}

TEST_F(DialogScrollingTest, DropsTheWheelOfOtherDialogsToo) {
    ScrolledDialog first;
    ScrolledDialog second;
    first.Turn(10, 10, -120, MK_CONTROL);
    second.Turn(10, 10, -120);
    EXPECT_TRUE(second.scrolled.empty());
    second.Press(2001, SB_LINEDOWN);
    first.Turn(10, 10, -120);
    EXPECT_EQ((Scrolls{{1, 2001}}), first.scrolled);
}

TEST_F(DialogScrollingTest, LowersItsGuardAfterAnException) {
    ScrolledDialog dialog;
    dialog.duringScroll = [] { throw std::bad_alloc(); };
    dialog.Press(2001, SB_LINEDOWN);
    dialog.Turn(10, 10, -120);
    EXPECT_EQ((Scrolls{{1, 2001}, {2, 2001}}), dialog.scrolled);
}

TEST_F(DialogScrollingTest, LeavesAGestureWithoutInformationToTheSystem) {
    ScrolledDialog dialog;
    EXPECT_FALSE(dialog.Scrolling().OnGesture(dialog.window, 0));
    EXPECT_TRUE(dialog.scrolled.empty());
}

// What the system's calls for touch were asked, in place of a finger.
struct Touch {
    bool exists = true;
    GESTUREINFO info{};
    int closed = 0;
    std::vector<HWND> configured;
};
Touch touch;

BOOL WINAPI FakeGetGestureInfo(HGESTUREINFO, GESTUREINFO* info) {
    *info = touch.info;
    return TRUE;
}
BOOL WINAPI FakeCloseGestureInfoHandle(HGESTUREINFO) { return ++touch.closed; }
BOOL WINAPI FakeSetGestureConfig(HWND window, DWORD, UINT count, GESTURECONFIG* config, UINT) {
    if (count == 1 && config->dwWant == GC_ALLGESTURES) touch.configured.push_back(window);
    return TRUE;
}

template <class Function>
FARPROC AsEntry(Function* function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

FARPROC WINAPI FakeGetProcAddress(HMODULE, LPCSTR name) {
    if (!touch.exists) return nullptr;
    const std::string_view wanted(name);
    if (wanted == "GetGestureInfo") return AsEntry(&FakeGetGestureInfo);
    if (wanted == "CloseGestureInfoHandle") return AsEntry(&FakeCloseGestureInfoHandle);
    return wanted == "SetGestureConfig" ? AsEntry(&FakeSetGestureConfig) : nullptr;
}

class DialogTouch : public DialogTest {
protected:
    void SetUp() override {
        DialogTest::SetUp();
        touch = Touch();
        ASSERT_TRUE(patch_.Ok());
    }
    // A finger at a point of the dialog's client area; whether an area took the message.
    static bool Gesture(const ScrolledDialog& dialog, DWORD kind, int x, int y) {
        POINT point{x, y};
        ClientToScreen(dialog.window, &point);
        touch.info.dwID = kind;
        touch.info.ptsLocation = {static_cast<SHORT>(point.x), static_cast<SHORT>(point.y)};
        return const_cast<ScrolledDialog&>(dialog).Scrolling().OnGesture(dialog.window, 1);
    }

private:
    obtest::ImportPatch<decltype(&GetProcAddress)> patch_{"kernel32.dll", "GetProcAddress",
                                                          &FakeGetProcAddress};
};

TEST_F(DialogTouch, PansByWholeUnitsFromThePresentPosition) {
    ScrolledDialog dialog;
    EXPECT_FALSE(Gesture(dialog, GID_BEGIN, 10, 45)) << "the system has to see it too";
    EXPECT_TRUE(Gesture(dialog, GID_PAN, 10, 40));
    EXPECT_TRUE(Gesture(dialog, GID_PAN, 10, 25));
    EXPECT_TRUE(Gesture(dialog, GID_PAN, 10, 24));
    EXPECT_EQ((Scrolls{{2, 2001}, {4, 2001}}), dialog.scrolled);
    EXPECT_EQ(3, touch.closed) << "once for each message that the system doesn't see";
}

TEST_F(DialogTouch, PansFromWhereTheFingerWentDownBesideTheArea) {
    ScrolledDialog dialog(false);
    EXPECT_FALSE(Gesture(dialog, GID_BEGIN, 10, 25)) << "an earlier pan";
    EXPECT_FALSE(Gesture(dialog, GID_BEGIN, 10, 70));
    EXPECT_FALSE(Gesture(dialog, GID_PAN, 10, 60)) << "not there yet";
    EXPECT_TRUE(Gesture(dialog, GID_PAN, 10, 40));
    EXPECT_EQ((Scrolls{{3, 2001}}), dialog.scrolled);
}

TEST_F(DialogTouch, LeavesItsPositionToATargetThatRuns) {
    ScrolledDialog dialog;
    Gesture(dialog, GID_BEGIN, 10, 45);
    std::size_t during = 0;
    dialog.duringScroll = [&] {
        EXPECT_TRUE(Gesture(dialog, GID_PAN, 10, 15));
        during = dialog.scrolled.size();
    };
    dialog.Press(2001, SB_LINEDOWN);
    EXPECT_EQ(1u, during) << "the target isn't called inside itself";
    EXPECT_EQ((Scrolls{{1, 2001}, {4, 2001}}), dialog.scrolled);
    EXPECT_EQ(4, dialog.Position(2001));
}

TEST_F(DialogTouch, MayEndWithItsDialogInATarget) {
    DeleteDuringScroll([](ScrolledDialog& dialog) {
        Gesture(dialog, GID_BEGIN, 10, 45);
        touch.info.ptsLocation.y = static_cast<SHORT>(touch.info.ptsLocation.y - 20);
        touch.info.dwID = GID_PAN;
        dialog.Send(WM_GESTURE, 0, 1);
    });
    EXPECT_EQ(1, touch.closed);
}

// What the toolkit passes to the system's default procedure.
int defaultGestures = 0;
LRESULT WINAPI FakeDefault(HWND, UINT message, WPARAM, LPARAM) {
    defaultGestures += message == WM_GESTURE || message == WM_GESTURENOTIFY;
    return 0x77;
}

TEST_F(DialogTouch, IsFinalAfterTheDefaultProcedure) {
    ScrolledDialog dialog;
    const obtest::ImportPatch<decltype(&DefWindowProcW)> patch("user32.dll", "DefWindowProcW",
                                                               &FakeDefault);
    ASSERT_TRUE(patch.Ok());
    touch.info.dwID = GID_ZOOM;
    GESTURENOTIFYSTRUCT notified{};
    notified.cbSize = sizeof notified;
    const std::pair<UINT, LPARAM> rows[] = {
        {WM_GESTURE, 1}, {WM_GESTURENOTIFY, reinterpret_cast<LPARAM>(&notified)}};
    for (const auto& [message, lParam] : rows) {
        defaultGestures = 0;
        EXPECT_EQ(0x77, dialog.Send(message, 0, lParam)) << message;
        EXPECT_EQ(1, defaultGestures) << message;
    }
    EXPECT_EQ(0, touch.closed) << "the default procedure does it";
}

TEST_F(DialogTouch, LeavesOtherGesturesToTheSystem) {
    ScrolledDialog dialog;
    for (const DWORD kind : {GID_END, GID_ZOOM, GID_ROTATE, GID_TWOFINGERTAP, GID_PRESSANDTAP}) {
        EXPECT_FALSE(Gesture(dialog, kind, 10, 10)) << kind;
    }
    EXPECT_EQ(0, touch.closed);
    EXPECT_TRUE(dialog.scrolled.empty());
}

TEST_F(DialogTouch, LiftsTheWheelsGuard) {
    ScrolledDialog dialog;
    dialog.Turn(10, 10, -120, MK_CONTROL);
    Gesture(dialog, GID_BEGIN, 10, 45);
    EXPECT_TRUE(Gesture(dialog, GID_PAN, 10, 35));
    dialog.Turn(10, 10, -120);
    EXPECT_EQ((Scrolls{{1, 2001}, {2, 2001}}), dialog.scrolled);
}

TEST_F(DialogTouch, AsksForAllGesturesOfThePanelUnderTheFinger) {
    ScrolledDialog dialog;
    POINT point{10, 10};
    ClientToScreen(dialog.window, &point);
    GESTURENOTIFYSTRUCT notified{};
    notified.cbSize = sizeof notified;
    notified.ptsLocation = {static_cast<SHORT>(point.x), static_cast<SHORT>(point.y)};
    dialog.Send(WM_GESTURENOTIFY, 0, reinterpret_cast<LPARAM>(&notified));
    EXPECT_EQ(std::vector<HWND>{dialog.GetItem(1001, true)}, touch.configured);
}

TEST_F(DialogTouch, DoesNothingOnASystemWithoutTouch) {
    touch.exists = false;
    ScrolledDialog dialog;
    EXPECT_FALSE(Gesture(dialog, GID_PAN, 10, 10));
    GESTURENOTIFYSTRUCT notified{};
    notified.cbSize = sizeof notified;
    dialog.Send(WM_GESTURENOTIFY, 0, reinterpret_cast<LPARAM>(&notified));
    EXPECT_TRUE(touch.configured.empty());
    EXPECT_TRUE(dialog.scrolled.empty());
}

} // namespace
