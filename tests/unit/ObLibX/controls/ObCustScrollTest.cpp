// The flat scroll bar: place, presses, hover, keys, operations and messages.
#include "ObLibX/src/controls/ObCustScroll.h"

#include <commctrl.h>

#include <algorithm>
#include <cstdio>

#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/ObLibX/controls/ScrollBarFixture.h"

namespace {

using namespace ObLibX;
using namespace obtest;

std::vector<TRACKMOUSEEVENT> leavesAsked;
BOOL WINAPI RecordTracking(TRACKMOUSEEVENT* event) {
    leavesAsked.push_back(*event);
    return TRUE;
}

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

TEST_F(ScrollBarPlace, HasAThumbOf15PixelsForAPageLargerThanTheRange) {
    SetInfo(SIF_RANGE | SIF_PAGE, 0, 99999, 1, 0);
    EXPECT_EQ(15, bar_.Layout().thumb.Height());
    SetInfo(SIF_RANGE | SIF_PAGE, 0, 9, 500, 0);
    EXPECT_EQ(10, bar_.Range().page) << "at most all of it";
    EXPECT_EQ(bar_.Layout().trackLength, bar_.Layout().thumb.Height());
    SetWindowPos(window_, nullptr, 0, 0, thickness_, 2 * arrow_ + 20, SWP_NOZORDER | SWP_NOMOVE);
    SetInfo(SIF_RANGE | SIF_PAGE, 0, 99, 10, 0);
    EXPECT_EQ(15, bar_.Layout().thumb.Height());
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

// A stock bar would scroll by them past what the bar reports.
TEST_F(ScrollBarKeys, OfAStockScrollBarAreTheSameFour) {
    const HWND window = Child(L"ScrollBar", SBS_VERT, {400, 50, 417, 284});
    ObFlatScrollbar bar(1002, ScrollOrientation::Vertical);
    bar.Attach(window);
    for (const WPARAM key :
         {VK_HOME, VK_END, VK_LEFT, VK_RIGHT, VK_UP, VK_DOWN, VK_PRIOR, VK_NEXT}) {
        Key(window, key);
    }
    EXPECT_EQ((std::vector{Scrolled{WM_VSCROLL, SB_LINEUP, 0, window},
                           Scrolled{WM_VSCROLL, SB_LINEDOWN, 0, window},
                           Scrolled{WM_VSCROLL, SB_PAGEUP, 0, window},
                           Scrolled{WM_VSCROLL, SB_PAGEDOWN, 0, window}}),
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

// What their last parameter asks for; the stock messages that have none repaint.
TEST_F(ScrollBarMessages, RepaintOnlyWhereTheyAreAskedTo) {
    SCROLLINFO info{sizeof info, SIF_POS, 0, 0, 0, 30, 0};
    const auto record = reinterpret_cast<LPARAM>(&info);
    const struct {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
        bool isRepainted;
    } rows[] = {{SBM_SETPOS, 10, FALSE, false},
                {SBM_SETPOS, 11, TRUE, true},
                {SBM_SETRANGE, 0, 90, false},
                {SBM_SETRANGEREDRAW, 0, 95, true},
                {SBM_SETSCROLLINFO, FALSE, record, false},
                {SBM_SETSCROLLINFO, TRUE, record, true},
                {TBM_SETPOS, FALSE, 20, false},
                {TBM_SETPOS, TRUE, 21, true},
                {TBM_SETRANGE, FALSE, MAKELPARAM(0, 80), false},
                {TBM_SETRANGE, TRUE, MAKELPARAM(0, 85), true},
                {TBM_SETRANGEMIN, FALSE, 1, false},
                {TBM_SETRANGEMIN, TRUE, 2, true},
                {TBM_SETRANGEMAX, FALSE, 70, false},
                {TBM_SETRANGEMAX, TRUE, 75, true}};
    for (const auto& row : rows) {
        RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        ASSERT_FALSE(GetUpdateRect(window_, nullptr, FALSE));
        SendMessageW(window_, row.message, row.wParam, row.lParam);
        EXPECT_EQ(row.isRepainted, GetUpdateRect(window_, nullptr, FALSE) != FALSE)
            << row.message << " " << row.wParam;
    }
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
    Press(window_, Middle(), 1);
    Move(window_, Middle(), Track(90));
    EXPECT_EQ((std::vector<DWORD>{0, 0, 0, 0, 0, 0}), states()) << "the mouse is elsewhere";
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
    SendMessageW(window_, TBM_SETRANGEMIN, TRUE, 60000);
    EXPECT_EQ(60000, SendMessageW(window_, TBM_GETRANGEMIN, 0, 0));
    EXPECT_EQ(60000, SendMessageW(window_, TBM_GETRANGEMAX, 0, 0)) << "moved along";
    SendMessageW(window_, TBM_SETRANGEMAX, TRUE, 70000);
    EXPECT_EQ(60000, SendMessageW(window_, TBM_GETRANGEMIN, 0, 0)) << "not lost";
    EXPECT_EQ(70000, SendMessageW(window_, TBM_GETRANGEMAX, 0, 0));
    SendMessageW(window_, TBM_SETRANGEMAX, TRUE, 50000);
    EXPECT_EQ(50000, SendMessageW(window_, TBM_GETRANGEMIN, 0, 0)) << "moved along";
    SendMessageW(window_, TBM_SETRANGEMAX, TRUE, 70000);
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

// Wine's stock bar limits neither page nor position at these two messages, as it does at
// SBM_SETSCROLLINFO: there only ranges that contain both are compared.
TEST_F(ScrollBarComparison, AnswersRangesAlike) {
    std::vector<int> maxima{59, 60, 99, 5000, INT_MAX / 2};
    if (AreStockControlsOfWine()) {
        std::printf("note: stock bars of Wine don't limit the position to a range that is set\n");
    } else {
        maxima.insert(maxima.end(), {39, 20, 0, -50});
    }
    for (const UINT message : {SBM_SETRANGE, SBM_SETRANGEREDRAW}) {
        for (const int minimum : {0, 1, -1, 40, -40, INT_MIN / 2}) {
            for (const int maximum : maxima) {
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

} // namespace
