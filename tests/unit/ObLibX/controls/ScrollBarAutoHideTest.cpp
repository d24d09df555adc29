// Hosted bars that are hidden while nobody uses them: when they come, when they go, and what is
// there meanwhile.
#include "tests/unit/ObLibX/controls/HostFixture.h"

#include <algorithm>

#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace {

using namespace ObLibX;
using namespace obtest;

constexpr DWORD kIn = AW_SLIDE;
constexpr DWORD kOut = AW_SLIDE | AW_HIDE;

class AutoHide : public HostTest {
protected:
    void SetUp() override {
        HostTest::SetUp();
        bars_.SetAutoHide(true);
        hostFakes.animations.clear();
        hostFakes.tracked.clear();
        SystemParametersInfoW(SPI_GETMOUSEHOVERWIDTH, 0, &hoverWidth_, 0);
    }
    // A mouse that moves to a point and rests there.
    void Hover(int x, int y) const {
        Move(host_, x, y);
        SendMessageW(host_, WM_MOUSEHOVER, 0, MAKELPARAM(x, y));
    }
    void Leave() const { SendMessageW(host_, WM_MOUSELEAVE, 0, 0); }
    void Tick() const { SendMessageW(host_, WM_TIMER, kHideBarsTimer, 0); }
    void ShowThem() {
        Hover(100, 80);
        ASSERT_EQ(All(), Shown());
        hostFakes.animations.clear();
    }
    // What slid in, in the order in which it did.
    std::vector<Animation> Slid(bool isIn) const {
        return {{Vertical(), 200, isIn ? kIn | AW_HOR_NEGATIVE : kOut | AW_HOR_POSITIVE},
                {Horizontal(), 200, isIn ? kIn | AW_VER_NEGATIVE : kOut | AW_VER_POSITIVE}};
    }
    // What the system was asked to report of the mouse last.
    static DWORD AskedLast() {
        return hostFakes.tracked.empty() ? 0 : hostFakes.tracked.back().dwFlags;
    }
    COLORREF WindowPixel(int x, int y) const {
        const HDC dc = GetWindowDC(host_);
        const COLORREF color = GetPixel(dc, x, y);
        ReleaseDC(host_, dc);
        return color;
    }

    UINT hoverWidth_ = 0;
};

TEST_F(AutoHide, LeavesTheContentAllButAStrip) {
    const int strip = Scale(4);
    EXPECT_EQ((PixelRect{0, 0, 300 - strip, 200 - strip}), ClientArea(host_));
    EXPECT_EQ(None(), Shown());
    ShowScrollBar(host_, SB_HORZ, FALSE);
    EXPECT_EQ((PixelRect{0, 0, 300 - strip, 200}), ClientArea(host_));
    ShowScrollBar(host_, SB_VERT, FALSE);
    EXPECT_EQ((PixelRect{0, 0, 300, 200}), ClientArea(host_)) << "no bar is needed";
    EXPECT_NE(0, GetWindowLongPtrW(host_, GWL_STYLE) & WS_CLIPSIBLINGS);
}

TEST_F(AutoHide, KeepsTheHostsOwnBars) {
    EXPECT_NE(0, GetWindowLongPtrW(host_, GWL_STYLE) & WS_VSCROLL);
    EXPECT_NE(0, GetWindowLongPtrW(host_, GWL_STYLE) & WS_HSCROLL);
    EXPECT_EQ(40, HostPosition(host_, SB_VERT));
}

TEST_F(AutoHide, IsAllClientAreaForTheMouse) {
    for (const POINT point : {POINT{5, 5}, POINT{298, 100}, POINT{100, 198}, POINT{-50, -50}}) {
        POINT screen = point;
        MapWindowPoints(host_, nullptr, &screen, 1);
        EXPECT_EQ(1, SendMessageW(host_, WM_NCHITTEST, 0, MAKELPARAM(screen.x, screen.y)));
    }
    bars_.SetAutoHide(false);
    EXPECT_EQ(HTNOWHERE, SendMessageW(host_, WM_NCHITTEST, 0, MAKELPARAM(-50, -50)));
}

TEST_F(AutoHide, ShowsTheBarsWhenTheMouseWasMovedAndRests) {
    Move(host_, 100, 80);
    EXPECT_EQ(None(), Shown()) << "it moves still";
    ASSERT_EQ(DWORD{TME_HOVER | TME_LEAVE}, AskedLast());
    EXPECT_EQ(host_, hostFakes.tracked.back().hwndTrack);
    EXPECT_EQ(DWORD{HOVER_DEFAULT}, hostFakes.tracked.back().dwHoverTime) << "the system's time";
    SendMessageW(host_, WM_MOUSEHOVER, 0, MAKELPARAM(100, 80));
    EXPECT_EQ(All(), Shown());
    EXPECT_EQ(Slid(true), hostFakes.animations);
    EXPECT_TRUE(sent_.empty()) << "the host didn't ask for the mouse";
}

// As Windows does: the call itself shows the window, and hides it.
TEST_F(AutoHide, ShowsAndHidesTheBarsBySlidesThatWork) {
    hostFakes.doesSlide = true;
    SendMessageW(host_, WM_KEYDOWN, VK_NEXT, 0);
    EXPECT_EQ(All(), Shown());
    EXPECT_EQ(Slid(true), hostFakes.animations);
    hostFakes.animations.clear();
    Leave();
    Tick();
    EXPECT_EQ(None(), Shown());
    EXPECT_EQ(Slid(false), hostFakes.animations);
}

// Each slide takes 200 ms inside the call.
TEST_F(AutoHide, PaintsWhatTheHostHasScrolledBeforeTheBarsSlide) {
    bool isPainted = false;
    const auto look = [&] { isPainted = !GetUpdateRect(host_, nullptr, FALSE); };
    const auto change = [&] {
        isPainted = false;
        InvalidateRect(host_, nullptr, TRUE);
        hostFakes.onAnimation = look;
    };
    change();
    SendMessageW(host_, WM_KEYDOWN, VK_NEXT, 0);
    EXPECT_TRUE(isPainted) << "bars that come";
    Leave();
    change();
    Tick();
    EXPECT_TRUE(isPainted) << "bars that go";
}

TEST_F(AutoHide, SurvivesAHostThatGoesInThatPaint) {
    InvalidateRect(host_, nullptr, TRUE);
    onPaint_ = [this] { DestroyWindow(host_); };
    SendMessageW(host_, WM_KEYDOWN, VK_NEXT, 0);
    EXPECT_EQ(nullptr, bars_.Host());
    EXPECT_TRUE(hostFakes.animations.empty());
    EXPECT_EQ(0, CountHolders());
}

TEST_F(AutoHide, SurvivesAHostThatGoesInASlide) {
    for (const bool isShowing : {true, false}) {
        hostFakes.doesSlide = true;
        if (!isShowing) {
            ShowThem();
            Leave();
        }
        hostFakes.onAnimation = [this] { DestroyWindow(host_); };
        if (isShowing) {
            SendMessageW(host_, WM_KEYDOWN, VK_NEXT, 0);
        } else {
            Tick();
        }
        EXPECT_EQ(nullptr, bars_.Host());
        EXPECT_EQ(0, CountHolders());
        host_ = MakeHost(0, 0);
        bars_.Attach(host_);
        hostFakes.animations.clear();
    }
}

TEST_F(AutoHide, TakesNoMoveInsideTheHoverRectangleForOne) {
    Move(host_, 100, 80);
    SendMessageW(host_, WM_MOUSEHOVER, 0, 0);
    Leave();
    Tick();
    ASSERT_EQ(None(), Shown());
    hostFakes.tracked.clear();
    Move(host_, 100, 80);
    Move(host_, 100 + static_cast<int>(hoverWidth_) / 2, 80);
    EXPECT_EQ(DWORD{TME_LEAVE}, AskedLast());
    SendMessageW(host_, WM_MOUSEHOVER, 0, 0);
    EXPECT_EQ(None(), Shown());
    EXPECT_EQ(1u, sent_.size()) << "a hover that wasn't asked for is the host's";
    Move(host_, 101 + static_cast<int>(hoverWidth_) / 2, 80);
    EXPECT_EQ(DWORD{TME_HOVER | TME_LEAVE}, AskedLast());
}

TEST_F(AutoHide, ShowsTheBarsWhenTheHostScrolls) {
    const struct {
        const char* name;
        UINT message;
        WPARAM wParam;
    } rows[] = {{"wheel", WM_MOUSEWHEEL, MAKEWPARAM(0, 120)},
                {"tilted wheel", WM_MOUSEHWHEEL, MAKEWPARAM(0, 120)},
                {"vertically", WM_VSCROLL, SB_LINEDOWN},
                {"horizontally", WM_HSCROLL, SB_LINEDOWN},
                {"Page Up", WM_KEYDOWN, VK_PRIOR},
                {"Page Down", WM_KEYDOWN, VK_NEXT},
                {"End", WM_KEYDOWN, VK_END},
                {"Home", WM_KEYDOWN, VK_HOME},
                {"Left", WM_KEYDOWN, VK_LEFT},
                {"Up", WM_KEYDOWN, VK_UP},
                {"Right", WM_KEYDOWN, VK_RIGHT},
                {"Down", WM_KEYDOWN, VK_DOWN}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        SendMessageW(host_, row.message, row.wParam, 0);
        EXPECT_EQ(All(), Shown());
        Leave();
        Tick();
        ASSERT_EQ(None(), Shown());
    }
    for (const WPARAM key : {WPARAM{VK_SPACE}, WPARAM{VK_SELECT}, WPARAM{'A'}}) {
        SendMessageW(host_, WM_KEYDOWN, key, 0);
        EXPECT_EQ(None(), Shown()) << key;
    }
}

TEST_F(AutoHide, ShowsTheBarsWhenAFingerPans) {
    for (const DWORD other : {GID_BEGIN, GID_ZOOM, GID_END}) {
        hostFakes.gesture = other;
        SendMessageW(host_, WM_GESTURE, 0, 1);
        EXPECT_EQ(None(), Shown()) << other;
    }
    hostFakes.gesture = GID_PAN;
    SendMessageW(host_, WM_GESTURE, 0, 1);
    EXPECT_EQ(All(), Shown());
    GESTURENOTIFYSTRUCT notified{};
    notified.cbSize = sizeof notified;
    SendMessageW(host_, WM_GESTURENOTIFY, 0, reinterpret_cast<LPARAM>(&notified));
    EXPECT_EQ(std::vector<HWND>{host_}, hostFakes.gesturesAsked);
    printf("gestures: fakes of the system's calls, which Wine lacks\n");
}

TEST_F(AutoHide, ShowsOnlyTheBarsThatTheHostHas) {
    ShowScrollBar(host_, SB_HORZ, FALSE);
    SendMessageW(host_, WM_KEYDOWN, VK_NEXT, 0);
    EXPECT_EQ((std::array<bool, 3>{true, false, false}), Shown());
    EXPECT_EQ(1u, hostFakes.animations.size());
    ShowScrollBar(host_, SB_HORZ, TRUE);
    EXPECT_EQ(All(), Shown()) << "one that comes while they are out is out too";
    printf("AnimateWindow: a fake, as Wine's returns at once\n");
}

TEST_F(AutoHide, ShowsTheStateOfTheHost) {
    SetHost(host_, SB_VERT, 499, 30, 77);
    Hover(100, 80);
    EXPECT_EQ(77, VerticalBar().Position());
}

TEST_F(AutoHide, HidesTheBarsWhenTheMouseHasLeft) {
    ShowThem();
    Leave();
    EXPECT_EQ((std::vector<SentTimer>{{host_, 10552, 300}}), hostFakes.timers);
    EXPECT_EQ(All(), Shown()) << "for a moment";
    Tick();
    EXPECT_EQ(None(), Shown());
    EXPECT_EQ(Slid(false), hostFakes.animations);
    EXPECT_TRUE(hostFakes.timers.empty());
    EXPECT_TRUE(sent_.empty()) << "the host gets no such timer";
    SendMessageW(host_, WM_TIMER, 77, 0);
    EXPECT_EQ(1u, sent_.size()) << "but its own";
}

TEST_F(AutoHide, StartsNoTimerWithoutBars) {
    Move(host_, 100, 80);
    Leave();
    EXPECT_TRUE(hostFakes.timers.empty());
}

TEST_F(AutoHide, KeepsTheBarsWhileOneHasTheMouse) {
    ShowThem();
    for (const HolderKind kind : {HolderKind::Vertical, HolderKind::Horizontal}) {
        Leave();
        Move(Bar(kind).window, 3, 3); // takes the capture
        Tick();
        EXPECT_EQ(All(), Shown());
        EXPECT_EQ(1u, hostFakes.timers.size()) << "it asks again";
        SendMessageW(Bar(kind).window, WM_MOUSELEAVE, 0, 0);
    }
    Tick();
    EXPECT_EQ(None(), Shown());
}

TEST_F(AutoHide, KeepsTheBarsWhileTheMouseIsOnTheCorner) {
    ShowThem();
    Leave();
    RECT corner{};
    GetWindowRect(Corner(), &corner);
    hostFakes.cursor = {corner.left, corner.top};
    Tick();
    EXPECT_EQ(All(), Shown());
    hostFakes.cursor = {corner.right, corner.bottom};
    Tick();
    EXPECT_EQ(None(), Shown());
}

// A list view's header is one.
TEST_F(AutoHide, KeepsTheBarsWhileTheMouseIsOnAChildOfTheHost) {
    const HWND header = CreateWindowExW(0, L"Button", L"", WS_CHILD | WS_VISIBLE, 0, 0, 80, 20,
                                        host_, nullptr, GetModuleHandleW(nullptr), nullptr);
    ShowThem();
    Leave();
    RECT place{};
    GetWindowRect(header, &place);
    hostFakes.cursor = {place.left + 3, place.top + 3};
    ASSERT_EQ(header, WindowFromPoint(hostFakes.cursor));
    Tick();
    EXPECT_EQ(All(), Shown());
    EXPECT_EQ(1u, hostFakes.timers.size()) << "it asks again";
    hostFakes.cursor = {-1000, -1000};
    Tick();
    EXPECT_EQ(None(), Shown());
}

TEST_F(AutoHide, KeepsTheBarsWhileTheirMenuIsOpen) {
    ShowThem();
    Leave();
    hostFakes.onMenu = [this] {
        Tick();
        EXPECT_EQ(All(), Shown());
    };
    ChooseFromMenu(HolderKind::Vertical, 0);
    Tick();
    EXPECT_EQ(None(), Shown());
}

TEST_F(AutoHide, KeepsTheBarsWhenTheMouseComesBack) {
    ShowThem();
    Leave();
    Move(host_, 20, 20);
    EXPECT_TRUE(hostFakes.timers.empty());
    EXPECT_EQ(DWORD{TME_LEAVE}, AskedLast()) << "its next leaving";
    Leave();
    EXPECT_EQ(1u, hostFakes.timers.size());
}

TEST_F(AutoHide, AsksWhetherTheMouseIsElsewhereWhenAKeyScrolls) {
    SendMessageW(host_, WM_KEYDOWN, VK_NEXT, 0);
    EXPECT_EQ(DWORD{TME_LEAVE}, AskedLast()) << "which is reported at once then";
    Leave();
    ASSERT_EQ(1u, hostFakes.timers.size());
    hostFakes.timers[0].period = 0;
    SendMessageW(host_, WM_KEYDOWN, VK_NEXT, 0);
    EXPECT_EQ(300u, hostFakes.timers[0].period) << "from now on";
}

TEST_F(AutoHide, ChangesWithTheBarsAtTheirPlaces) {
    bars_.SetAutoHide(false);
    EXPECT_EQ(All(), Shown());
    EXPECT_TRUE(hostFakes.animations.empty());
    EXPECT_EQ(300 - GetSystemMetrics(SM_CXVSCROLL), ClientArea(host_).right);
    bars_.SetAutoHide(false);
    bars_.SetAutoHide(true);
    EXPECT_EQ(None(), Shown());
    EXPECT_EQ(Slid(false), hostFakes.animations);
    EXPECT_EQ(300 - Scale(4), ClientArea(host_).right);
}

TEST_F(AutoHide, EndsWithItsTimer) {
    ShowThem();
    Leave();
    bars_.SetAutoHide(false);
    EXPECT_TRUE(hostFakes.timers.empty());
    SendMessageW(host_, WM_TIMER, kHideBarsTimer, 0);
    EXPECT_EQ(All(), Shown()) << "one that was on its way";
    EXPECT_FALSE(sent_.empty());
}

TEST_F(AutoHide, IsWithoutMovementInAHiddenDialog) {
    ShowWindow(parent_.Get(), SW_HIDE);
    SendMessageW(host_, WM_KEYDOWN, VK_NEXT, 0);
    EXPECT_EQ(None(), Shown());
    bars_.SetAutoHide(false);
    EXPECT_EQ(All(), Shown()) << "when the dialog is";
    bars_.SetAutoHide(true);
    EXPECT_EQ(None(), Shown());
    EXPECT_TRUE(hostFakes.animations.empty());
}

TEST_F(AutoHide, PaintsAThinThumbWhereTheBarsWouldBe) {
    RedrawWindow(host_, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_UPDATENOW);
    const int strip = Scale(4);
    EXPECT_EQ(0xF0F0F0u, WindowPixel(299, 2));
    EXPECT_EQ(0xF0F0F0u, WindowPixel(300 - strip, 2));
    EXPECT_EQ(GetPaletteColor(10), WindowPixel(299, 100)) << "40 of 80";
    EXPECT_EQ(0xF0F0F0u, WindowPixel(299, 190));
    EXPECT_EQ(GetPaletteColor(10), WindowPixel(2, 199));
    EXPECT_EQ(0xF0F0F0u, WindowPixel(299, 199)) << "the corner";
    SetHost(host_, SB_VERT, 99, 20, 0);
    Erase(host_);
    EXPECT_EQ(GetPaletteColor(10), WindowPixel(299, 2)) << "it follows the host";
    EXPECT_EQ(0xF0F0F0u, WindowPixel(299, 100));
}

// A host that sets its own bar has the system paint a piece of it, also where nothing is new.
TEST_F(AutoHide, PaintsTheStripsAgainAfterWhateverMayHavePaintedTheOwnBars) {
    const auto paintOwnBar = [this] {
        const HDC dc = GetWindowDC(host_);
        FillArea(dc, {300 - Scale(4), 0, 300, 200}, 0xFF00FF);
        ReleaseDC(host_, dc);
    };
    RedrawWindow(host_, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_UPDATENOW);
    for (const UINT message : {UINT{WM_CHAR}, UINT{WM_SETTEXT}}) {
        onAnyMessage_ = paintOwnBar;
        SendMessageW(host_, message, 0, 0);
        EXPECT_EQ(0xF0F0F0u, WindowPixel(299, 2)) << message;
        EXPECT_EQ(GetPaletteColor(10), WindowPixel(299, 100)) << message;
    }
    COLORREF whileItSlides = 0;
    hostFakes.onAnimation = [&] { whileItSlides = WindowPixel(299, 2); };
    onAnyMessage_ = paintOwnBar;
    SendMessageW(host_, WM_VSCROLL, SB_LINEDOWN, 0);
    EXPECT_EQ(0xF0F0F0u, whileItSlides);
}

TEST_F(AutoHide, PaintsTheStripsInTheSchemesColours) {
    isBarContrast = true;
    RedrawWindow(host_, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_UPDATENOW);
    EXPECT_EQ(GetSysColor(COLOR_SCROLLBAR), WindowPixel(299, 2));
    EXPECT_EQ(GetSysColor(COLOR_WINDOWFRAME), WindowPixel(299, 100));
}

TEST_F(AutoHide, PaintsNoThumbWhereNothingScrolls) {
    const struct {
        int maximum;
        UINT page;
    } rows[] = {{10, 100}, {99, 100}, {0, 0}, {0, 1}};
    for (const auto& row : rows) {
        SetHost(host_, SB_VERT, row.maximum, row.page, 0);
        ShowScrollBar(host_, SB_VERT, TRUE);
        RedrawWindow(host_, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_UPDATENOW);
        for (const int y : {2, 100, 180}) {
            EXPECT_EQ(0xF0F0F0u, WindowPixel(299, y)) << row.maximum << ", " << y;
        }
    }
}

TEST_F(AutoHide, TakesTheStripsFromAWindowWithABorder) {
    DestroyWindow(host_);
    host_ = MakeHost(WS_BORDER, WS_EX_CLIENTEDGE);
    bars_.Attach(host_);
    const int border = GetSystemMetrics(SM_CXBORDER) + GetSystemMetrics(SM_CXEDGE);
    EXPECT_EQ(300 - 2 * border - Scale(4), ClientArea(host_).right);
    EXPECT_EQ(None(), Shown()) << "the mode outlives the window";
}

} // namespace
