// The flat scroll bar: place, mouse, keys, messages, repeat and painting.
#include "ObLibX/src/controls/ObCustScroll.h"

#include <commctrl.h>

#include <algorithm>

#include "ObLibX/src/controls/ScrollRepeat.h"
#include "ObLibX/src/dialog/Palette.h"
#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/ObLibX/controls/BarFixture.h"

namespace {

using namespace ObLibX;
using obtest::PaintedPixels;
using obtest::Scrolled;

std::vector<std::pair<UINT_PTR, UINT>> timersSet;
int timersKilled = 0;

UINT_PTR WINAPI RecordTimer(HWND, UINT_PTR id, UINT period, TIMERPROC) {
    timersSet.emplace_back(id, period);
    return id;
}
BOOL WINAPI RecordKill(HWND, UINT_PTR) {
    ++timersKilled;
    return TRUE;
}

std::vector<TRACKMOUSEEVENT> leavesAsked;
BOOL WINAPI RecordTracking(TRACKMOUSEEVENT* event) {
    leavesAsked.push_back(*event);
    return TRUE;
}

// The values that a listener reads within the events of changed values.
std::vector<int> valuesHeard;
void WINAPI HearEvent(DWORD event, HWND window, LONG, LONG) {
    if (event != EVENT_OBJECT_VALUECHANGE) return;
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_TRACKPOS;
    SendMessageW(window, SBM_GETSCROLLINFO, 0, reinterpret_cast<LPARAM>(&info));
    valuesHeard.push_back(info.nTrackPos);
}

POINT fakeCursor{}; // on the screen
BOOL WINAPI FakeCursor(POINT* point) {
    *point = fakeCursor;
    return TRUE;
}

// A vertical bar with a range of 0 to 99 and pages of 20, on a label that was too wide. Its timers
// are recorded.
class ScrollBarTest : public obtest::BarTest {
protected:
    void SetUp() override {
        BarTest::SetUp();
        timersSet.clear();
        timersKilled = 0;
        ASSERT_TRUE(set_.Ok() && kill_.Ok() && cursor_.Ok());
        thickness_ = GetSystemMetrics(SM_CXVSCROLL);
        arrow_ = GetSystemMetrics(SM_CYVSCROLL);
        window_ = Child(L"Static", 0, {100, 50, 160, 50 + 2 * arrow_ + 200});
        bar_.Attach(window_);
        SetInfo(SIF_ALL, 0, 99, 20, 40);
    }
    void TearDown() override {
        BarTest::TearDown();
        EXPECT_FALSE(TheScrollRepeat().IsRunning(window_)) << "the repeat ends with the window";
    }

    LRESULT SetInfo(UINT mask, int minimum, int maximum, UINT page, int position) {
        SCROLLINFO info{sizeof info, mask, minimum, maximum, page, position, 0};
        return SendMessageW(window_, SBM_SETSCROLLINFO, TRUE, reinterpret_cast<LPARAM>(&info));
    }
    SCROLLINFO Info(UINT mask = SIF_ALL) const {
        SCROLLINFO info{};
        info.cbSize = sizeof info;
        info.fMask = mask;
        SendMessageW(window_, SBM_GETSCROLLINFO, 0, reinterpret_cast<LPARAM>(&info));
        return info;
    }
    // The place of a pixel of the track, at the middle of the bar.
    int Track(int pixel) const { return arrow_ + pixel; }
    int Middle() const { return thickness_ / 2; }
    int Bottom() const { return 2 * arrow_ + 199; }
    void Tick() const { SendMessageW(window_, WM_TIMER, kScrollRepeatTimer, 0); }
    // Delivers the press that was posted; false without one.
    bool DeliverPress() const {
        MSG message{};
        if (!PeekMessageW(&message, window_, WM_LBUTTONDOWN, WM_LBUTTONDOWN, PM_REMOVE)) {
            return false;
        }
        DispatchMessageW(&message);
        return true;
    }
    void PutCursor(int x, int y) const {
        fakeCursor = {x, y};
        ClientToScreen(window_, &fakeCursor);
    }
    Scrolled Vertical(int code, int value = 0) const { return {WM_VSCROLL, code, value, window_}; }

    ObFlatScrollbar bar_{1001, ScrollOrientation::Vertical};
    HWND window_ = nullptr;
    int thickness_ = 0;
    int arrow_ = 0;

private:
    obtest::ImportPatch<decltype(&SetTimer)> set_{"user32.dll", "SetTimer", &RecordTimer};
    obtest::ImportPatch<decltype(&KillTimer)> kill_{"user32.dll", "KillTimer", &RecordKill};
    obtest::ImportPatch<decltype(&GetCursorPos)> cursor_{"user32.dll", "GetCursorPos", &FakeCursor};
};

class ScrollBarPlace : public ScrollBarTest {};

TEST_F(ScrollBarPlace, HasTheSystemsThicknessFromItsRightEdge) {
    const RECT place = PlaceOf(window_);
    EXPECT_EQ(160, place.right);
    EXPECT_EQ(160 - thickness_, place.left);
    EXPECT_EQ(50, place.top);
    EXPECT_EQ(50 + 2 * arrow_ + 200, place.bottom);
}

TEST_F(ScrollBarPlace, HasTheSystemsThicknessFromItsBottomEdgeWhenHorizontal) {
    const HWND window = Child(L"Static", 0, {100, 100, 400, 160});
    ObFlatScrollbar bar(1002, ScrollOrientation::Horizontal);
    bar.Attach(window);
    const RECT place = PlaceOf(window);
    EXPECT_EQ(160, place.bottom);
    EXPECT_EQ(160 - GetSystemMetrics(SM_CYHSCROLL), place.top);
    EXPECT_EQ(GetSystemMetrics(SM_CXHSCROLL), bar.Layout().arrowLength);
    EXPECT_EQ(GetSystemMetrics(SM_CXHTHUMB), bar.Layout().thumbLength);
    DestroyWindow(window);
}

TEST_F(ScrollBarPlace, KeepsItsThicknessWhenItIsResized) {
    SetWindowPos(window_, nullptr, 0, 0, 300, 100, SWP_NOZORDER | SWP_NOMOVE);
    EXPECT_EQ(thickness_, ClientArea(window_).Width());
    EXPECT_EQ(100 - 2 * arrow_, bar_.Layout().trackLength);
    SetWindowPos(window_, nullptr, 0, 0, 0, 0, SWP_NOZORDER | SWP_NOMOVE);
    EXPECT_EQ(0, bar_.Layout().trackLength);
}

TEST_F(ScrollBarPlace, BeginsWithARangeOf100AndArrowsThatAreOn) {
    const HWND window = Child(L"Static", 0, {200, 50, 260, 284});
    ObFlatScrollbar bar(1002, ScrollOrientation::Vertical);
    bar.Attach(window);
    EXPECT_EQ(0, bar.Position());
    EXPECT_EQ(0, bar.Range().minimum);
    EXPECT_EQ(100, bar.Range().maximum);
    EXPECT_EQ(0, bar.Range().page);
    EXPECT_EQ(arrow_, bar.Layout().thumbLength) << "the system's thumb without a page";
    EXPECT_FALSE(bar.EnableArrows(ESB_ENABLE_BOTH));
    DestroyWindow(window);
}

TEST_F(ScrollBarPlace, IsAllClientAreaAndWantsArrowKeys) {
    EXPECT_EQ(HTCLIENT, SendMessageW(window_, WM_NCHITTEST, 0, 0));
    EXPECT_NE(0, SendMessageW(window_, WM_GETDLGCODE, 0, 0) & DLGC_WANTARROWS);
    EXPECT_NE(0, SendMessageW(window_, WM_ERASEBKGND, 0, 0)) << "nothing is erased: no flicker";
}

class ScrollBarPress : public ScrollBarTest {};

TEST_F(ScrollBarPress, SendsACodeForEachPart) {
    const struct {
        int y;
        int code;
    } rows[] = {
        {1, SB_LINEUP}, {Track(5), SB_PAGEUP}, {Track(195), SB_PAGEDOWN}, {Bottom(), SB_LINEDOWN}};
    for (const auto& row : rows) {
        scrolled_.clear();
        Press(window_, Middle(), row.y);
        LetGo(window_, Middle(), row.y);
        EXPECT_EQ(std::vector{Vertical(row.code)}, scrolled_) << row.y;
    }
    EXPECT_EQ(40, bar_.Position()) << "the parent moves the bar";
}

TEST_F(ScrollBarPress, SendsHorizontalMessagesFromAHorizontalBar) {
    const HWND window = Child(L"Static", 0, {100, 300, 400, 340});
    ObFlatScrollbar bar(1002, ScrollOrientation::Horizontal);
    bar.Attach(window);
    Press(window, 1, 3);
    LetGo(window, 1, 3);
    EXPECT_EQ((std::vector{Scrolled{WM_HSCROLL, SB_LINELEFT, 0, window}}), scrolled_);
    DestroyWindow(window);
}

TEST_F(ScrollBarPress, TakesTheFocusAndTheMouse) {
    SetFocus(parent_.Get());
    Press(window_, Middle(), 1);
    EXPECT_EQ(window_, GetFocus());
    EXPECT_EQ(window_, GetCapture());
    LetGo(window_, Middle(), 1);
    EXPECT_EQ(window_, GetCapture()) << "the mouse is still on it";
    Press(window_, Middle(), 1);
    LetGo(window_, -5, 1);
    EXPECT_EQ(nullptr, GetCapture());
}

TEST_F(ScrollBarPress, CountsADoubleClickAsAPress) {
    SendMessageW(window_, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(Middle(), 1));
    EXPECT_EQ(std::vector{Vertical(SB_LINEUP)}, scrolled_);
    LetGo(window_, Middle(), 1);
}

TEST_F(ScrollBarPress, IsNothingOnAnArrowThatIsOff) {
    SendMessageW(window_, SBM_ENABLE_ARROWS, ESB_DISABLE_UP, 0);
    Press(window_, Middle(), 1);
    LetGo(window_, Middle(), 1);
    EXPECT_TRUE(scrolled_.empty() && timersSet.empty());
    Press(window_, Middle(), Bottom());
    LetGo(window_, Middle(), Bottom());
    EXPECT_EQ(std::vector{Vertical(SB_LINEDOWN)}, scrolled_);
}

TEST_F(ScrollBarPress, SurvivesAParentThatDestroysTheBar) {
    onScrolled_ = [this](const Scrolled&) { DestroyWindow(window_); };
    Press(window_, Middle(), 1);
    EXPECT_FALSE(IsWindow(window_));
    EXPECT_EQ(nullptr, bar_.window);
    EXPECT_EQ(nullptr, GetCapture());
}

class ScrollBarRepeat : public ScrollBarTest {};

TEST_F(ScrollBarRepeat, BeginsWithTheFourthTickAndGoesOnWithEachOne) {
    PutCursor(Middle(), Bottom());
    Press(window_, Middle(), Bottom());
    EXPECT_EQ((std::vector<std::pair<UINT_PTR, UINT>>{{10551, 200}}), timersSet);
    for (int tick = 0; tick < 3; ++tick) {
        Tick();
        EXPECT_FALSE(DeliverPress()) << tick;
    }
    for (int tick = 0; tick < 3; ++tick) {
        Tick();
        EXPECT_TRUE(DeliverPress()) << tick;
    }
    EXPECT_EQ(4u, scrolled_.size());
    EXPECT_EQ(1u, timersSet.size()) << "a repeated press doesn't start the delay again";
    LetGo(window_, Middle(), Bottom());
    EXPECT_EQ(1, timersKilled);
    Tick();
    EXPECT_FALSE(DeliverPress());
}

TEST_F(ScrollBarRepeat, PressesWhereTheCursorIs) {
    Press(window_, Middle(), Bottom());
    for (int tick = 0; tick < 3; ++tick) Tick();
    PutCursor(Middle(), Track(195));
    Tick();
    DeliverPress();
    EXPECT_EQ((std::vector{Vertical(SB_LINEDOWN), Vertical(SB_PAGEDOWN)}), scrolled_);
    PutCursor(-30, 20);
    Tick();
    EXPECT_TRUE(DeliverPress());
    EXPECT_EQ(2u, scrolled_.size()) << "nothing beside the bar";
    LetGo(window_, -30, 20);
}

TEST_F(ScrollBarRepeat, EndsOnTheThumbWhichIsThenDragged) {
    PutCursor(Middle(), Track(100));
    Press(window_, Middle(), Track(195));
    for (int tick = 0; tick < 4; ++tick) Tick();
    DeliverPress();
    EXPECT_TRUE(bar_.IsDragging());
    EXPECT_FALSE(TheScrollRepeat().IsRunning(window_));
    LetGo(window_, Middle(), Track(100));
}

TEST_F(ScrollBarRepeat, EndsWithTheCaptureAndTheFocus) {
    Press(window_, Middle(), 1);
    SetCapture(parent_.Get());
    EXPECT_FALSE(TheScrollRepeat().IsRunning(window_));
    ReleaseCapture();
    Press(window_, Middle(), 1);
    EXPECT_TRUE(TheScrollRepeat().IsRunning(window_));
    SetFocus(parent_.Get());
    EXPECT_FALSE(TheScrollRepeat().IsRunning(window_));
    LetGo(window_, Middle(), 1);
    EXPECT_EQ(2, timersKilled);
}

TEST_F(ScrollBarRepeat, EndsWhenTheBarIsHidden) {
    Press(window_, Middle(), 1);
    ShowWindow(window_, SW_HIDE);
    EXPECT_FALSE(TheScrollRepeat().IsRunning(window_));
    EXPECT_EQ(nullptr, GetCapture());
    ShowWindow(window_, SW_SHOW);
    Press(window_, Middle(), Track(90));
    EXPECT_TRUE(bar_.IsDragging());
    ShowWindow(window_, SW_HIDE);
    EXPECT_FALSE(bar_.IsDragging());
}

TEST_F(ScrollBarRepeat, EndsWithTheNextTickWhenTheParentIsHidden) {
    Press(window_, Middle(), 1);
    ShowWindow(parent_.Get(), SW_HIDE);
    Tick();
    EXPECT_FALSE(TheScrollRepeat().IsRunning(window_));
    EXPECT_EQ(nullptr, GetCapture());
}

// The system may give the same handle to a later window.
TEST_F(ScrollBarRepeat, ForgetsAPressThatWasPostedToADestroyedBar) {
    PutCursor(Middle(), 1);
    Press(window_, Middle(), 1);
    for (int tick = 0; tick < 4; ++tick) Tick();
    DestroyWindow(window_);
    EXPECT_FALSE(TheScrollRepeat().TakePosted(window_));
}

TEST_F(ScrollBarRepeat, DropsAPressThatWasPostedBeforeItEnded) {
    PutCursor(Middle(), 1);
    Press(window_, Middle(), 1);
    for (int tick = 0; tick < 4; ++tick) Tick();
    SetFocus(parent_.Get());
    scrolled_.clear();
    EXPECT_TRUE(DeliverPress());
    EXPECT_TRUE(scrolled_.empty());
    LetGo(window_, Middle(), 1);
}

TEST_F(ScrollBarRepeat, DoesNotBeginWhenTheButtonWentUpMeanwhile) {
    onScrolled_ = [this](const Scrolled&) { LetGo(window_, Middle(), 1); };
    Press(window_, Middle(), 1);
    EXPECT_TRUE(timersSet.empty());
}

TEST_F(ScrollBarRepeat, RunsForOneBarAtATime) {
    const HWND window = Child(L"Static", 0, {200, 50, 260, 284});
    ObFlatScrollbar other(1002, ScrollOrientation::Vertical);
    other.Attach(window);
    Press(window_, Middle(), 1);
    Press(window, Middle(), 1);
    EXPECT_FALSE(TheScrollRepeat().IsRunning(window_));
    EXPECT_TRUE(TheScrollRepeat().IsRunning(window));
    DestroyWindow(window);
    EXPECT_FALSE(TheScrollRepeat().IsRunning(window));
}

class ScrollBarDrag : public ScrollBarTest {
protected:
    // The thumb starts at pixel 80 of the track; 2 pixels are a value.
    void Begin() { Press(window_, Middle(), Track(90)); }
};

TEST_F(ScrollBarDrag, ReportsEachNewValueAndTheLastOneAtItsEnd) {
    Begin();
    Move(window_, Middle(), Track(94));
    Move(window_, Middle(), Track(94));
    Move(window_, Middle(), Track(98));
    LetGo(window_, Middle(), Track(98));
    EXPECT_EQ((std::vector{Vertical(SB_THUMBTRACK, 42), Vertical(SB_THUMBTRACK, 44),
                           Vertical(SB_THUMBPOSITION, 44)}),
              scrolled_);
    EXPECT_FALSE(bar_.IsDragging());
    EXPECT_EQ(Track(80), bar_.Layout().thumbOffset) << "back, as the parent didn't move it";
}

TEST_F(ScrollBarDrag, StaysAtTheEndAndReportsNothingNewThere) {
    Begin();
    Move(window_, Middle(), Track(400));
    EXPECT_EQ(Track(160), bar_.Layout().thumbOffset);
    Move(window_, Middle(), Track(500));
    Move(window_, Middle(), Track(600));
    EXPECT_EQ(std::vector{Vertical(SB_THUMBTRACK, 80)}, scrolled_);
    Move(window_, Middle(), Track(-300));
    Move(window_, Middle(), Track(-400));
    EXPECT_EQ((std::vector{Vertical(SB_THUMBTRACK, 80), Vertical(SB_THUMBTRACK, 0)}), scrolled_);
    LetGo(window_, Middle(), Track(-400));
}

TEST_F(ScrollBarDrag, EndsOneAfterTheMaximumWithoutAPage) {
    SetInfo(SIF_RANGE | SIF_PAGE | SIF_POS, 0, 100, 0, 0);
    Press(window_, Middle(), Track(2));
    Move(window_, Middle(), Track(900));
    EXPECT_EQ(std::vector{Vertical(SB_THUMBTRACK, 101)}, scrolled_);
    LetGo(window_, Middle(), Track(900));
}

TEST_F(ScrollBarDrag, LeavesTheThumbUnderTheMouseWhateverTheParentSets) {
    onScrolled_ = [this](const Scrolled& sent) { SetInfo(SIF_POS, 0, 0, 0, sent.value / 2); };
    Begin();
    Move(window_, Middle(), Track(110));
    EXPECT_EQ(Track(100), bar_.Layout().thumbOffset);
    EXPECT_EQ(25, bar_.Position());
    LetGo(window_, Middle(), Track(110));
    EXPECT_EQ(Track(bar_.Position() * 2), bar_.Layout().thumbOffset);
}

TEST_F(ScrollBarDrag, SurvivesAnotherRangeInItsMiddle) {
    Begin();
    Move(window_, Middle(), Track(110));
    SetInfo(SIF_RANGE | SIF_PAGE, 0, 9, 5, 0);
    EXPECT_TRUE(bar_.IsDragging());
    EXPECT_LE(bar_.Layout().thumb.bottom, Track(200));
    scrolled_.clear();
    Move(window_, Middle(), Track(900));
    EXPECT_EQ(std::vector{Vertical(SB_THUMBTRACK, 5)}, scrolled_);
    LetGo(window_, Middle(), Track(900));
}

TEST_F(ScrollBarDrag, AnswersTheTrackPositionWithAll32Bits) {
    SetInfo(SIF_RANGE | SIF_PAGE | SIF_POS, 0, 999999, 200000, 400000);
    EXPECT_EQ(400000, Info().nTrackPos) << "before a drag";
    std::vector<int> seen;
    onScrolled_ = [&](const Scrolled&) { seen.push_back(Info(SIF_TRACKPOS).nTrackPos); };
    Begin();
    Move(window_, Middle(), Track(100));
    LetGo(window_, Middle(), Track(100));
    ASSERT_EQ(2u, seen.size());
    EXPECT_EQ(450000, seen[0]);
    EXPECT_EQ(450000, seen[1]);
    EXPECT_EQ(450000 & 0xFFFF, scrolled_[0].value & 0xFFFF);
    EXPECT_EQ(400000, Info().nTrackPos) << "after it";
}

TEST_F(ScrollBarDrag, LeavesThePositionWithoutAMove) {
    SetInfo(SIF_RANGE | SIF_PAGE | SIF_POS, 0, 99999, 20000, 40001);
    Begin();
    LetGo(window_, Middle(), Track(90));
    EXPECT_EQ(std::vector{Vertical(SB_THUMBPOSITION, static_cast<short>(40001))}, scrolled_);
}

TEST_F(ScrollBarDrag, IsForgottenWhenTheMouseIsTakenAway) {
    Begin();
    Move(window_, Middle(), Track(110));
    scrolled_.clear();
    SetCapture(parent_.Get());
    EXPECT_FALSE(bar_.IsDragging());
    EXPECT_EQ(Track(80), bar_.Layout().thumbOffset);
    EXPECT_TRUE(scrolled_.empty());
    ReleaseCapture();
}

TEST_F(ScrollBarDrag, EndsWhenTheBarIsDisabled) {
    Begin();
    EnableWindow(window_, FALSE);
    EXPECT_FALSE(bar_.IsDragging());
    EXPECT_EQ(nullptr, GetCapture());
}

TEST_F(ScrollBarDrag, SurvivesAParentThatDestroysTheBar) {
    onScrolled_ = [this](const Scrolled&) { DestroyWindow(window_); };
    Begin();
    Move(window_, Middle(), Track(110));
    EXPECT_EQ(nullptr, bar_.window);
    EXPECT_FALSE(bar_.IsDragging());
}

TEST_F(ScrollBarDrag, OfAThumbWithoutTravelReportsThePosition) {
    SetWindowPos(window_, nullptr, 0, 0, thickness_, 2 * arrow_ + 10, SWP_NOZORDER | SWP_NOMOVE);
    Begin();
    EXPECT_EQ(0, bar_.Layout().Travel());
    Press(window_, Middle(), Track(5));
    Move(window_, Middle(), Track(60));
    LetGo(window_, Middle(), Track(60));
    for (const Scrolled& sent : scrolled_) EXPECT_EQ(40, sent.value);
}

class ScrollBarHover : public ScrollBarTest {};

TEST_F(ScrollBarHover, TakesTheMouseAndReleasesItOutside) {
    Move(window_, Middle(), 5);
    EXPECT_EQ(window_, GetCapture());
    Move(window_, -3, 5);
    EXPECT_EQ(nullptr, GetCapture());
    Move(window_, Middle(), 5);
    SendMessageW(window_, WM_MOUSELEAVE, 0, 0);
    EXPECT_EQ(nullptr, GetCapture());
}

// With the capture alone the system sends no moves over windows of other threads.
TEST_F(ScrollBarHover, AsksOnceToHearOfTheMouseLeaving) {
    leavesAsked.clear();
    const obtest::ImportPatch<decltype(&TrackMouseEvent)> track("user32.dll", "TrackMouseEvent",
                                                                &RecordTracking);
    ASSERT_TRUE(track.Ok());
    Move(window_, Middle(), 5);
    Move(window_, Middle(), 6);
    ASSERT_EQ(1u, leavesAsked.size());
    EXPECT_EQ(DWORD{TME_LEAVE}, leavesAsked[0].dwFlags);
    EXPECT_EQ(window_, leavesAsked[0].hwndTrack);
    SendMessageW(window_, WM_MOUSELEAVE, 0, 0);
    Move(window_, Middle(), 5);
    EXPECT_EQ(2u, leavesAsked.size()) << "again after it left";
    Press(window_, Middle(), Track(90));
    SendMessageW(window_, WM_MOUSELEAVE, 0, 0);
    Move(window_, -50, Track(95));
    EXPECT_EQ(2u, leavesAsked.size()) << "not while a button is down";
    EXPECT_TRUE(bar_.IsDragging());
    LetGo(window_, Middle(), Track(90));
    Move(window_, Middle(), Track(91));
    EXPECT_EQ(3u, leavesAsked.size());
}

TEST_F(ScrollBarHover, KeepsTheMouseWhileTheButtonIsDown) {
    Press(window_, Middle(), 1);
    Move(window_, -300, 5);
    EXPECT_EQ(window_, GetCapture());
    LetGo(window_, -300, 5);
}

class ScrollBarKeys : public ScrollBarTest {};

TEST_F(ScrollBarKeys, ArePageAndLineAndNoOthers) {
    for (const WPARAM key :
         {VK_PRIOR, VK_NEXT, VK_UP, VK_DOWN, VK_LEFT, VK_RIGHT, VK_HOME, VK_END}) {
        Key(window_, key);
    }
    EXPECT_EQ((std::vector{Vertical(SB_PAGEUP), Vertical(SB_PAGEDOWN), Vertical(SB_LINEUP),
                           Vertical(SB_LINEDOWN)}),
              scrolled_);
}

TEST_F(ScrollBarKeys, OfAHorizontalBarAreTheSameFour) {
    const HWND window = Child(L"Static", 0, {100, 300, 400, 340});
    ObFlatScrollbar bar(1002, ScrollOrientation::Horizontal);
    bar.Attach(window);
    for (const WPARAM key : {VK_UP, VK_DOWN, VK_LEFT, VK_RIGHT}) Key(window, key);
    EXPECT_EQ((std::vector{Scrolled{WM_HSCROLL, SB_LINELEFT, 0, window},
                           Scrolled{WM_HSCROLL, SB_LINERIGHT, 0, window}}),
              scrolled_);
    DestroyWindow(window);
}

class ScrollBarOperations : public ScrollBarTest {};

TEST_F(ScrollBarOperations, SendTheirCodes) {
    bar_.ScrollToStart();
    bar_.ScrollToEnd();
    bar_.PageBack();
    bar_.PageForward();
    bar_.LineBack();
    bar_.LineForward();
    EXPECT_EQ((std::vector{Vertical(SB_TOP), Vertical(SB_BOTTOM), Vertical(SB_PAGEUP),
                           Vertical(SB_PAGEDOWN), Vertical(SB_LINEUP), Vertical(SB_LINEDOWN)}),
              scrolled_);
    EXPECT_EQ(3, bar_.MapCode(3));
    EXPECT_EQ(Track(80), bar_.ComputeThumbPosition());
}

TEST_F(ScrollBarOperations, ScrollHereReportsTheValueAtTheMouse) {
    std::vector<int> seen;
    onScrolled_ = [&](const Scrolled&) { seen.push_back(Info(SIF_TRACKPOS).nTrackPos); };
    bar_.SetLastMouse({Middle(), Track(100)});
    bar_.ScrollHere();
    bar_.SetLastMouse({Middle(), Track(9000)});
    bar_.ScrollHere();
    bar_.SetLastMouse({Middle(), -50});
    bar_.ScrollHere();
    bar_.SetLastMouse({Middle(), Track(80)});
    bar_.ScrollHere();
    EXPECT_EQ((std::vector{Vertical(SB_THUMBTRACK, 50), Vertical(SB_THUMBTRACK, 80),
                           Vertical(SB_THUMBTRACK, 0)}),
              scrolled_)
        << "nothing for the position itself";
    EXPECT_EQ((std::vector{50, 80, 0}), seen);
    EXPECT_EQ(40, Info().nTrackPos);
}

TEST_F(ScrollBarOperations, CountTheWholeRangeForOneItemData) {
    bar_.itemData = L"wmrkhslider";
    Press(window_, Middle(), Track(90));
    Move(window_, Middle(), Track(900));
    EXPECT_EQ(std::vector{Vertical(SB_THUMBTRACK, 99)}, scrolled_);
    LetGo(window_, Middle(), Track(900));
}

class ScrollBarMessages : public ScrollBarTest {};

TEST_F(ScrollBarMessages, EndTheProcessForArrowFlagsThatAreNone) {
    EXPECT_FATAL(SendMessageW(window_, SBM_ENABLE_ARROWS, 4, 0), "ObLibX\\src\\ObCustScroll.cpp");
    EXPECT_FATAL(bar_.EnableArrows(~WPARAM{0}), "ObLibX\\src\\ObCustScroll.cpp");
}

TEST_F(ScrollBarMessages, ReportTheGeometryOfTheBar) {
    SCROLLBARINFO info{};
    info.cbSize = sizeof info;
    EXPECT_TRUE(GetScrollBarInfo(window_, OBJID_CLIENT, &info));
    RECT window{};
    GetWindowRect(window_, &window);
    EXPECT_TRUE(EqualRect(&window, &info.rcScrollBar));
    EXPECT_EQ(arrow_, info.dxyLineButton);
    EXPECT_EQ(Track(80), info.xyThumbTop);
    EXPECT_EQ(Track(120), info.xyThumbBottom);
    EXPECT_EQ(0u, info.rgstate[0]);
    SendMessageW(window_, SBM_ENABLE_ARROWS, ESB_DISABLE_DOWN, 0);
    EnableWindow(window_, FALSE);
    SendMessageW(window_, SBM_GETSCROLLBARINFO, 0, reinterpret_cast<LPARAM>(&info));
    EXPECT_EQ(unsigned{STATE_SYSTEM_UNAVAILABLE}, info.rgstate[0]);
    EXPECT_EQ(0u, info.rgstate[1]);
    EXPECT_EQ(unsigned{STATE_SYSTEM_UNAVAILABLE}, info.rgstate[5]);
    info.cbSize = 3;
    EXPECT_FALSE(SendMessageW(window_, SBM_GETSCROLLBARINFO, 0, reinterpret_cast<LPARAM>(&info)));
}

TEST_F(ScrollBarMessages, ReportThePressedPartAndWhatIsNotSeen) {
    const auto states = [&] {
        SCROLLBARINFO info{};
        info.cbSize = sizeof info;
        SendMessageW(window_, SBM_GETSCROLLBARINFO, 0, reinterpret_cast<LPARAM>(&info));
        return std::vector<DWORD>(std::begin(info.rgstate), std::end(info.rgstate));
    };
    constexpr DWORD kPressed = STATE_SYSTEM_PRESSED;
    constexpr DWORD kUnseen = STATE_SYSTEM_INVISIBLE;
    EXPECT_EQ((std::vector<DWORD>{0, 0, 0, 0, 0, 0}), states());
    Press(window_, Middle(), 1);
    EXPECT_EQ((std::vector<DWORD>{0, kPressed, 0, 0, 0, 0}), states());
    LetGo(window_, Middle(), 1);
    EXPECT_EQ((std::vector<DWORD>{0, 0, 0, 0, 0, 0}), states()) << "the mouse alone";
    Press(window_, Middle(), Track(90));
    EXPECT_EQ((std::vector<DWORD>{0, 0, 0, kPressed, 0, 0}), states());
    LetGo(window_, Middle(), Track(90));
    SetInfo(SIF_POS, 0, 0, 0, 0);
    EXPECT_EQ((std::vector<DWORD>{0, 0, kUnseen, 0, 0, 0}), states());
    SetInfo(SIF_POS, 0, 0, 0, 80);
    EXPECT_EQ((std::vector<DWORD>{0, 0, 0, 0, kUnseen, 0}), states());
    ShowWindow(window_, SW_HIDE);
    EXPECT_EQ((std::vector<DWORD>{kUnseen, 0, 0, 0, kUnseen, 0}), states());
}

TEST_F(ScrollBarMessages, LimitARangeUpsideDownOrTooWideToZero) {
    const struct {
        int minimum;
        int maximum;
    } rows[] = {{10, 9}, {INT_MAX, INT_MIN}, {INT_MIN, INT_MAX}, {-1, INT_MAX}};
    for (const auto& row : rows) {
        SendMessageW(window_, SBM_SETRANGE, 0, 99);
        SendMessageW(window_, SBM_SETPOS, 40, TRUE);
        EXPECT_EQ(40, SendMessageW(window_, SBM_SETRANGEREDRAW, static_cast<WPARAM>(row.minimum),
                                   row.maximum))
            << "the position had to change";
        EXPECT_EQ(0, bar_.Range().minimum);
        EXPECT_EQ(0, bar_.Range().maximum);
        EXPECT_EQ(0, bar_.Position());
        EXPECT_LE(bar_.Range().page, 1);
    }
    SetInfo(SIF_RANGE | SIF_PAGE, 0, INT_MAX, UINT_MAX, 0);
    EXPECT_EQ(INT_MAX, bar_.Range().maximum);
    EXPECT_EQ(INT_MAX, bar_.Range().page) << "at most 31 bits";
}

TEST_F(ScrollBarMessages, SwitchTheArrowsOffWithNothingToScroll) {
    SetInfo(SIF_ALL | SIF_DISABLENOSCROLL, 0, 9, 10, 0);
    EXPECT_TRUE(bar_.EnableArrows(ESB_ENABLE_BOTH)) << "they were off";
    SetInfo(SIF_ALL | SIF_DISABLENOSCROLL, 0, 0, 0, 0);
    EXPECT_TRUE(bar_.EnableArrows(ESB_ENABLE_BOTH)) << "one value without a page";
    SetInfo(SIF_ALL | SIF_DISABLENOSCROLL, 0, 1, 0, 0);
    EXPECT_FALSE(bar_.EnableArrows(ESB_ENABLE_BOTH));
    SetInfo(SIF_ALL | SIF_DISABLENOSCROLL, 0, 9, 5, 0);
    EXPECT_FALSE(bar_.EnableArrows(ESB_ENABLE_BOTH));
}

TEST_F(ScrollBarMessages, SetWhatATrackbarsClientSets) {
    SendMessageW(window_, TBM_SETRANGE, TRUE, MAKELPARAM(-10, 30));
    EXPECT_EQ(-10, SendMessageW(window_, TBM_GETRANGEMIN, 0, 0));
    EXPECT_EQ(30, SendMessageW(window_, TBM_GETRANGEMAX, 0, 0));
    SendMessageW(window_, TBM_SETRANGEMIN, TRUE, 70000);
    EXPECT_EQ(0, SendMessageW(window_, TBM_GETRANGEMIN, 0, 0)) << "upside down: none";
    SendMessageW(window_, TBM_SETRANGEMAX, TRUE, 70000);
    EXPECT_EQ(70000, SendMessageW(window_, TBM_GETRANGEMAX, 0, 0));
    SendMessageW(window_, TBM_SETPOS, TRUE, 65537);
    EXPECT_EQ(65537, SendMessageW(window_, TBM_GETPOS, 0, 0));
    SendMessageW(window_, TBM_SETPAGESIZE, 0, 7);
    EXPECT_EQ(7, bar_.Range().page);
}

TEST_F(ScrollBarMessages, IgnoreNoRecord) {
    EXPECT_EQ(0, SendMessageW(window_, SBM_SETSCROLLINFO, TRUE, 0));
    EXPECT_EQ(0, SendMessageW(window_, SBM_GETSCROLLINFO, TRUE, 0));
    EXPECT_EQ(0, SendMessageW(window_, SBM_GETSCROLLBARINFO, TRUE, 0));
    EXPECT_EQ(1, SendMessageW(window_, SBM_GETRANGE, 0, 0));
}

// A stock scroll bar gets what the flat one gets; the results must be equal.
class ScrollBarComparison : public ScrollBarTest {
protected:
    void SetUp() override {
        ScrollBarTest::SetUp();
        stock_ = Child(L"ScrollBar", SBS_VERT, {300, 50, 317, 284});
        SCROLLINFO info{sizeof info, SIF_ALL, 0, 99, 20, 40, 0};
        SetScrollInfo(stock_, SB_CTL, &info, TRUE);
        ASSERT_EQ(State(window_), State(stock_));
    }
    static std::vector<int> State(HWND bar) {
        SCROLLINFO info{};
        info.cbSize = sizeof info;
        info.fMask = SIF_PAGE | SIF_POS | SIF_RANGE;
        SendMessageW(bar, SBM_GETSCROLLINFO, 0, reinterpret_cast<LPARAM>(&info));
        return {info.nMin, info.nMax, static_cast<int>(info.nPage), info.nPos};
    }
    void ExpectSame(UINT message, WPARAM wParam, LPARAM lParam, const std::string& what) {
        EXPECT_EQ(SendMessageW(stock_, message, wParam, lParam),
                  SendMessageW(window_, message, wParam, lParam))
            << what;
        EXPECT_EQ(State(stock_), State(window_)) << what;
    }
    HWND stock_ = nullptr;
};

constexpr int kNumbers[] = {0, 1, -1, 5, 40, 79, 80, 81, 99, 100, -40, 5000, INT_MAX, INT_MIN};

TEST_F(ScrollBarComparison, AnswersPositionsAlike) {
    for (const int value : kNumbers) {
        ExpectSame(SBM_SETPOS, static_cast<WPARAM>(value), TRUE, "set " + std::to_string(value));
        ExpectSame(SBM_GETPOS, 0, 0, "get");
    }
}

// Only ranges that contain page and position: the stock bar of the system that the tests run on
// limits neither at these two messages, as it does at SBM_SETSCROLLINFO.
TEST_F(ScrollBarComparison, AnswersRangesAlike) {
    for (const UINT message : {SBM_SETRANGE, SBM_SETRANGEREDRAW}) {
        for (const int minimum : {0, 1, -1, 40, -40, INT_MIN / 2}) {
            for (const int maximum : {59, 60, 99, 5000, INT_MAX / 2}) {
                ExpectSame(message, static_cast<WPARAM>(minimum), maximum,
                           std::to_string(minimum) + " to " + std::to_string(maximum));
            }
        }
    }
    int stock[2] = {-1, -1};
    int flat[2] = {-1, -1};
    EXPECT_EQ(SendMessageW(stock_, SBM_GETRANGE, reinterpret_cast<WPARAM>(&stock[0]),
                           reinterpret_cast<LPARAM>(&stock[1])),
              SendMessageW(window_, SBM_GETRANGE, reinterpret_cast<WPARAM>(&flat[0]),
                           reinterpret_cast<LPARAM>(&flat[1])));
    EXPECT_EQ(stock[0], flat[0]);
    EXPECT_EQ(stock[1], flat[1]);
}

TEST_F(ScrollBarComparison, AnswersRecordsAlike) {
    for (const UINT mask : {SIF_POS, SIF_PAGE, SIF_RANGE, SIF_RANGE | SIF_PAGE,
                            SIF_RANGE | SIF_PAGE | SIF_POS, 0, 0x100}) {
        for (const int value : kNumbers) {
            // A range of more than 31 bits overflows in the stock bar.
            if (value == INT_MAX && (mask & SIF_RANGE) != 0) continue;
            for (const UINT page : {0u, 1u, 10u, 100u, 101u, 5000u}) {
                SCROLLINFO info{sizeof info, mask, -5, value, page, value / 2, 7};
                ExpectSame(SBM_SETSCROLLINFO, TRUE, reinterpret_cast<LPARAM>(&info),
                           std::to_string(mask) + " " + std::to_string(value) + " " +
                               std::to_string(page));
            }
        }
    }
}

TEST_F(ScrollBarComparison, GivesTheSameRecord) {
    for (const UINT size : {static_cast<UINT>(sizeof(SCROLLINFO)), 24u, 3u}) {
        for (const UINT mask : {SIF_ALL, SIF_POS, SIF_PAGE, SIF_RANGE, SIF_TRACKPOS, 0, 0x100}) {
            SCROLLINFO stock{size, mask, 1, 2, 3, 4, 5};
            SCROLLINFO flat = stock;
            EXPECT_EQ(SendMessageW(stock_, SBM_GETSCROLLINFO, 0, reinterpret_cast<LPARAM>(&stock)),
                      SendMessageW(window_, SBM_GETSCROLLINFO, 0, reinterpret_cast<LPARAM>(&flat)))
                << size << " " << mask;
            if ((mask & SIF_TRACKPOS) != 0) stock.nTrackPos = flat.nTrackPos;
            EXPECT_EQ(0, std::memcmp(&stock, &flat, sizeof stock)) << size << " " << mask;
        }
    }
}

TEST_F(ScrollBarComparison, SwitchesArrowsAlike) {
    for (const WPARAM flags : {1u, 1u, 2u, 0u, 0u, 3u, 3u, 2u, 1u, 0u}) {
        ExpectSame(SBM_ENABLE_ARROWS, flags, 0, std::to_string(flags));
    }
}

class ScrollBarPainting : public ScrollBarTest {
protected:
    PixelRect Thumb() const { return bar_.Layout().thumb; }
};

constexpr COLORREF kTrackColor = 0xF0F0F0;

TEST_F(ScrollBarPainting, HasAThumbAndArrowsOnAGreyGround) {
    const PaintedPixels pixels(window_);
    EXPECT_EQ(kTrackColor, pixels.At(0, Track(0)));
    EXPECT_EQ(kTrackColor, pixels.At(Middle(), Track(195)));
    EXPECT_EQ(Thumb().Width() * Thumb().Height(), pixels.Count(Thumb(), 0xCCCCCC));
    EXPECT_EQ(0, pixels.Count(pixels.Area(), 0x123456)) << "everything is painted";
    for (const PixelRect& arrow : {bar_.Layout().upArrow, bar_.Layout().downArrow}) {
        const int ground = pixels.Count(arrow, kTrackColor);
        EXPECT_GT(arrow.Width() * arrow.Height(), ground);
        EXPECT_LT(0, ground);
    }
}

TEST_F(ScrollBarPainting, FramesThePartUnderTheMouse) {
    const auto frameAt = [&](int y) {
        Move(window_, Middle(), y);
        return PaintedPixels(window_).At(0, y);
    };
    const COLORREF hot = GetPaletteColor(7);
    EXPECT_EQ(0xE8A765u, hot);
    EXPECT_EQ(hot, frameAt(5));
    EXPECT_EQ(hot, frameAt(Track(100)));
    EXPECT_EQ(hot, frameAt(Bottom() - 5));
    EXPECT_EQ(kTrackColor, frameAt(Track(5))) << "the track has no frame";
    Move(window_, Middle(), 5);
    EXPECT_TRUE(PaintedPixels(window_).IsFramed(bar_.Layout().upArrow, hot));
    Move(window_, -1, 5);
    EXPECT_FALSE(PaintedPixels(window_).IsFramed(bar_.Layout().upArrow, hot));
}

TEST_F(ScrollBarPainting, FramesThePressedPartInTheAccentColour) {
    Press(window_, Middle(), 5);
    EXPECT_TRUE(PaintedPixels(window_).IsFramed(bar_.Layout().upArrow, kAccentColor));
    LetGo(window_, Middle(), 5);
    EXPECT_TRUE(PaintedPixels(window_).IsFramed(bar_.Layout().upArrow, GetPaletteColor(7)));
    Press(window_, Middle(), Track(100));
    Move(window_, -80, Track(110));
    EXPECT_TRUE(PaintedPixels(window_).IsFramed(Thumb(), kAccentColor)) << "dragged";
    LetGo(window_, -80, Track(110));
}

TEST_F(ScrollBarPainting, DrawsArrowsThatAreOffAsDisabled) {
    const auto arrowPixels = [&](const PixelRect& arrow) {
        const PaintedPixels pixels(window_);
        std::vector<COLORREF> colours;
        for (int y = arrow.top; y < arrow.bottom; ++y) {
            for (int x = arrow.left; x < arrow.right; ++x) colours.push_back(pixels.At(x, y));
        }
        return colours;
    };
    const PixelRect up = bar_.Layout().upArrow;
    const PixelRect down = bar_.Layout().downArrow;
    const auto upOn = arrowPixels(up);
    const auto downOn = arrowPixels(down);
    bar_.EnableArrows(ESB_DISABLE_UP);
    const auto upOff = arrowPixels(up);
    EXPECT_NE(upOn, upOff);
    EXPECT_EQ(downOn, arrowPixels(down));
    bar_.EnableArrows(ESB_ENABLE_BOTH);
    EnableWindow(window_, FALSE);
    EXPECT_EQ(upOff, arrowPixels(up));
    EXPECT_NE(downOn, arrowPixels(down));
}

TEST_F(ScrollBarPainting, HasTheSystemsColoursAndAGripInHighContrast) {
    obtest::isBarContrast = true;
    const PaintedPixels pixels(window_);
    const COLORREF line = GetSysColor(COLOR_WINDOWFRAME);
    EXPECT_EQ(GetSysColor(COLOR_SCROLLBAR), pixels.At(2, Track(195)));
    EXPECT_TRUE(pixels.IsFramed(pixels.Area(), line));
    EXPECT_TRUE(pixels.IsFramed(Thumb(), line));
    const PixelRect thumb = Thumb();
    const PixelRect column{Middle(), thumb.top + 1, Middle() + 1, thumb.bottom - 1};
    EXPECT_EQ(3, pixels.Count(column, line)) << "three lines";
}

TEST_F(ScrollBarPainting, ShowsTheFocusOnItsThumbUnlessCuesAreHidden) {
    const auto without = [&] {
        SetFocus(parent_.Get());
        return PaintedPixels(window_).Count(Thumb(), 0xCCCCCC);
    }();
    SetFocus(window_);
    EXPECT_GT(without, PaintedPixels(window_).Count(Thumb(), 0xCCCCCC));
    HideFocusCues(window_);
    EXPECT_EQ(without, PaintedPixels(window_).Count(Thumb(), 0xCCCCCC));
}

TEST_F(ScrollBarPainting, IsAtOnceOnTheWindow) {
    const auto onWindow = [&](int x, int y) {
        const ClientDc dc(window_);
        return GetPixel(dc.Get(), x, y);
    };
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    EXPECT_EQ(kTrackColor, onWindow(0, 0));
    Move(window_, Middle(), 5);
    EXPECT_EQ(GetPaletteColor(7), onWindow(0, 0));
    Press(window_, Middle(), 5);
    EXPECT_EQ(kAccentColor, onWindow(0, 0));
    LetGo(window_, -9, 5);
    EXPECT_EQ(kTrackColor, onWindow(0, 0));
}

TEST_F(ScrollBarPainting, SurvivesNoSizeAndNoPictures) {
    SetWindowPos(window_, nullptr, 0, 0, 0, 0, SWP_NOZORDER | SWP_NOMOVE);
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    ObLib::AppGlobals().SetModule(GetModuleHandleW(L"kernel32.dll"), L"", L"");
    const HWND window = Child(L"Static", 0, {200, 50, 260, 284});
    ObFlatScrollbar bare(1002, ScrollOrientation::Vertical);
    bare.Attach(window);
    const PaintedPixels pixels(window);
    EXPECT_EQ(kTrackColor, pixels.At(Middle(), 5));
    DestroyWindow(window);
}

class ScrollBarAccessible : public ScrollBarTest {};

TEST_F(ScrollBarAccessible, HasTheNameOfTheLabelBeforeAndAValueWithItsRange) {
    const HWND label = Child(L"Static", 0, {10, 10, 90, 20});
    SetWindowTextW(label, L"&Lines:");
    SetWindowPos(label, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    const auto seen = obtest::AccessibleOf(window_);
    EXPECT_EQ(LONG{ROLE_SYSTEM_SCROLLBAR}, seen.role);
    EXPECT_EQ(L"Lines:", seen.name);
    EXPECT_EQ(L"40", seen.value);
    EXPECT_EQ(L"0 - 99", seen.description);
    EXPECT_EQ(L"", seen.action);
    SetInfo(SIF_POS, 0, 0, 0, 12);
    EXPECT_EQ(L"12", obtest::AccessibleOf(window_).value);
}

TEST_F(ScrollBarAccessible, ReportsEachNewValueOnce) {
    valuesHeard.clear();
    const obtest::ImportPatch<decltype(&NotifyWinEvent)> hear("user32.dll", "NotifyWinEvent",
                                                              &HearEvent);
    ASSERT_TRUE(hear.Ok());
    SetInfo(SIF_POS, 0, 0, 0, 5000);
    EXPECT_EQ((std::vector{80}), valuesHeard) << "within the range already";
    SetInfo(SIF_POS, 0, 0, 0, 5000);
    SetInfo(SIF_PAGE, 0, 0, 20, 0);
    EXPECT_EQ(1u, valuesHeard.size()) << "nothing changed";
    SetInfo(SIF_POS, 0, 0, 0, 40);
    valuesHeard.clear();
    Press(window_, Middle(), Track(90));
    Move(window_, Middle(), Track(94));
    Move(window_, Middle(), Track(98));
    EXPECT_EQ((std::vector{42, 44}), valuesHeard);
    LetGo(window_, Middle(), Track(98));
    EXPECT_EQ((std::vector{42, 44, 40}), valuesHeard) << "back, as the parent didn't move it";
}

} // namespace
