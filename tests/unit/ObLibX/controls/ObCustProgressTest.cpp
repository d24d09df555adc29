// The flat progress bar: length, colours, marquee.
#include "ObLibX/src/controls/ObCustProgress.h"

#include <commctrl.h>

#include <cstdio>

#include "ObLibX/src/dialog/Palette.h"
#include "tests/unit/ObLibX/controls/BarFixture.h"

namespace {

using namespace ObLibX;
using obtest::PaintedPixels;

constexpr COLORREF kGround = 0xF6F6F6;
constexpr COLORREF kFrame = 0xDFDFDF;

std::vector<std::pair<UINT_PTR, UINT>> timersSet;
std::vector<UINT_PTR> timersKilled;

UINT_PTR WINAPI RecordTimer(HWND, UINT_PTR id, UINT period, TIMERPROC) {
    timersSet.emplace_back(id, period);
    return id;
}
BOOL WINAPI RecordKill(HWND, UINT_PTR id) {
    timersKilled.push_back(id);
    return TRUE;
}

// Of 260 by 20 pixels.
class ProgressTest : public obtest::BarTest {
protected:
    void SetUp() override {
        BarTest::SetUp();
        timersSet.clear();
        timersKilled.clear();
        ASSERT_TRUE(set_.Ok() && kill_.Ok());
        INITCOMMONCONTROLSEX classes{sizeof classes, ICC_PROGRESS_CLASS};
        InitCommonControlsEx(&classes);
        Make(0);
    }
    void Make(DWORD style) {
        if (window_ != nullptr) DestroyWindow(window_);
        RECT outer{0, 0, 260, 20};
        window_ = Child(PROGRESS_CLASSW, style, {10, 10, 270, 30});
        // The client area is what the stock bar's edge leaves.
        const PixelRect client = ClientArea(window_);
        SetWindowPos(window_, nullptr, 0, 0, outer.right + (outer.right - client.right),
                     outer.bottom + (outer.bottom - client.bottom), SWP_NOMOVE | SWP_NOZORDER);
        bar_ = std::make_unique<ObFlatProgressBar>(1001);
        bar_->Attach(window_);
        ASSERT_EQ((PixelRect{0, 0, 260, 20}), ClientArea(window_));
    }
    void TearDown() override {
        BarTest::TearDown();
        bar_.reset();
    }
    // The stock bar of the system that the tests run on accepts states and remembers none: from now
    // on this window reports the one that was set.
    void RememberStates() const {
        if (Send(PBM_SETSTATE, PBST_ERROR), Send(PBM_GETSTATE) == PBST_ERROR) return;
        std::printf("note: this system's progress bars have no states; a fake remembers them\n");
        SetWindowSubclass(
            window_,
            [](HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
               DWORD_PTR) -> LRESULT {
                static LRESULT state = PBST_NORMAL;
                if (message == PBM_SETSTATE) state = static_cast<LRESULT>(wParam);
                if (message == PBM_GETSTATE) return state;
                return DefSubclassProc(window, message, wParam, lParam);
            },
            1, 0);
    }
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return SendMessageW(window_, message, wParam, lParam);
    }
    // Where along the middle the bar's colour begins and ends; both 0 without any.
    std::pair<int, int> Filled(COLORREF color) const {
        const PaintedPixels pixels(window_);
        int start = 0;
        int end = 0;
        for (int x = 2; x < 258; ++x) {
            if (pixels.At(x, 10) != color) continue;
            if (end == 0) start = x;
            end = x + 1;
        }
        return {start, end};
    }

    std::unique_ptr<ObFlatProgressBar> bar_;
    HWND window_ = nullptr;

private:
    obtest::ImportPatch<decltype(&SetTimer)> set_{"user32.dll", "SetTimer", &RecordTimer};
    obtest::ImportPatch<decltype(&KillTimer)> kill_{"user32.dll", "KillTimer", &RecordKill};
};

using Range = std::pair<int, int>;

class ProgressPainting : public ProgressTest {};

TEST_F(ProgressPainting, FillsItsShareFromTheLeftInsideAFrame) {
    Send(PBM_SETRANGE32, 0, 100);
    Send(PBM_SETPOS, 50);
    EXPECT_EQ((Range{2, 130}), Filled(kAccentColor));
    const PaintedPixels pixels(window_);
    EXPECT_TRUE(pixels.IsFramed({0, 0, 260, 20}, kFrame));
    EXPECT_TRUE(pixels.IsFramed({1, 1, 259, 19}, kFrame)) << "two pixels";
    EXPECT_EQ(kGround, pixels.At(131, 10));
}

TEST_F(ProgressPainting, GoesByTheHighLimitAlone) {
    Send(PBM_SETRANGE32, 50, 100);
    Send(PBM_SETPOS, 50);
    EXPECT_EQ((Range{2, 130}), Filled(kAccentColor));
}

TEST_F(ProgressPainting, FillsFromTheTopWhenVertical) {
    Make(PBS_VERTICAL);
    Send(PBM_SETPOS, 50);
    const PaintedPixels pixels(window_);
    EXPECT_EQ(kAccentColor, pixels.At(130, 9));
    EXPECT_EQ(kGround, pixels.At(130, 11));
}

TEST_F(ProgressPainting, IsEmptyWithAnEmptyRange) {
    Send(PBM_SETRANGE32, 0, 0);
    EXPECT_EQ((Range{0, 0}), Filled(kAccentColor));
    EXPECT_EQ(kGround, PaintedPixels(window_).At(5, 10));
}

TEST_F(ProgressPainting, HasAColourByItsState) {
    RememberStates();
    Send(PBM_SETPOS, 50);
    Send(PBM_SETSTATE, PBST_ERROR);
    EXPECT_EQ((Range{2, 130}), Filled(0x2626DA));
    Send(PBM_SETSTATE, PBST_PAUSED);
    EXPECT_EQ((Range{2, 130}), Filled(0x26CBDA));
    Send(PBM_SETSTATE, PBST_NORMAL);
    EXPECT_EQ((Range{2, 130}), Filled(kAccentColor));
}

// The stock bar may repaint by a timer of its own, whose ticks it doesn't get.
TEST_F(ProgressPainting, IsRepaintedAfterEachMessageThatChangesIt) {
    const struct {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
    } rows[] = {{PBM_SETPOS, 40, 0},     {PBM_DELTAPOS, 3, 0},
                {PBM_STEPIT, 0, 0},      {PBM_SETRANGE, 0, MAKELPARAM(0, 90)},
                {PBM_SETRANGE32, 0, 80}, {PBM_SETSTATE, PBST_ERROR, 0},
                {PBM_SETBARCOLOR, 0, 1}};
    for (const auto& row : rows) {
        RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        ASSERT_FALSE(GetUpdateRect(window_, nullptr, FALSE));
        Send(row.message, row.wParam, row.lParam);
        EXPECT_TRUE(GetUpdateRect(window_, nullptr, FALSE)) << row.message;
    }
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    Send(PBM_GETPOS);
    EXPECT_FALSE(GetUpdateRect(window_, nullptr, FALSE));
}

TEST_F(ProgressPainting, PrefersABarColourToTheStates) {
    RememberStates();
    Send(PBM_SETPOS, 50);
    Send(PBM_SETSTATE, PBST_ERROR);
    Send(PBM_SETBARCOLOR, 0, 0x00AA11);
    EXPECT_EQ((Range{2, 130}), Filled(0x00AA11));
    Send(PBM_SETBARCOLOR, 0, static_cast<LPARAM>(CLR_DEFAULT));
    EXPECT_EQ((Range{2, 130}), Filled(0x2626DA));
}

TEST_F(ProgressPainting, HasTheSystemsAccentInHighContrast) {
    obtest::isBarContrast = true;
    Send(PBM_SETPOS, 50);
    EXPECT_EQ(GetSysColor(COLOR_HOTLIGHT), PaintedPixels(window_).At(20, 10));
}

TEST_F(ProgressPainting, LeavesTheStockAnswers) {
    Send(PBM_SETRANGE32, 3, 30);
    Send(PBM_SETSTEP, 5);
    EXPECT_EQ(3, Send(PBM_SETPOS, 12));
    EXPECT_EQ(12, Send(PBM_STEPIT));
    EXPECT_EQ(17, Send(PBM_GETPOS));
    EXPECT_EQ(17, Send(PBM_DELTAPOS, 2));
    PBRANGE range{};
    EXPECT_EQ(30, Send(PBM_GETRANGE, FALSE, reinterpret_cast<LPARAM>(&range)));
    EXPECT_EQ(3, range.iLow);
    EXPECT_EQ(30, range.iHigh);
}

TEST_F(ProgressPainting, LeavesBorderAndBackgroundUnpainted) {
    EXPECT_EQ(0, Send(WM_NCPAINT, 1));
    EXPECT_NE(0, Send(WM_ERASEBKGND));
    const ClientDc dc(window_);
    SetBkMode(dc.Get(), OPAQUE);
    EXPECT_EQ(GetStockObject(WHITE_BRUSH), bar_->OnCtlColor(dc.Get(), window_));
    EXPECT_EQ(TRANSPARENT, GetBkMode(dc.Get()));
}

TEST_F(ProgressPainting, SurvivesNoSize) {
    Send(PBM_SETPOS, 50);
    SetWindowPos(window_, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOZORDER);
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    SetWindowPos(window_, nullptr, 0, 0, 3, 3, SWP_NOMOVE | SWP_NOZORDER);
    const PaintedPixels pixels(window_);
    EXPECT_EQ(0, pixels.Count(pixels.Area(), 0x123456)) << "all of it is painted";
    Make(PBS_MARQUEE);
    Send(PBM_SETMARQUEE, TRUE, 0);
    SetWindowPos(window_, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOZORDER);
    for (int tick = 0; tick < 5; ++tick) Send(WM_TIMER, kMarqueeTimer);
    EXPECT_EQ(Marquee{}, bar_->marquee);
}

class ProgressMarquee : public ProgressTest {};

TEST_F(ProgressMarquee, EndsWithTheObject) {
    Make(PBS_MARQUEE);
    Send(PBM_SETMARQUEE, TRUE, 0);
    bar_.reset();
    EXPECT_EQ((std::vector<UINT_PTR>{10551}), timersKilled);
}

TEST_F(ProgressMarquee, RunsOnlyWithItsStyle) {
    Send(PBM_SETMARQUEE, TRUE, 0);
    EXPECT_FALSE(bar_->isMarquee);
    EXPECT_TRUE(timersSet.empty());
    Make(PBS_MARQUEE);
    Send(PBM_SETMARQUEE, TRUE, 0);
    Send(PBM_SETMARQUEE, TRUE, 0);
    EXPECT_TRUE(bar_->isMarquee);
    EXPECT_EQ((std::vector<std::pair<UINT_PTR, UINT>>{{10551, 30}}), timersSet);
    Send(PBM_SETMARQUEE, FALSE, 0);
    EXPECT_FALSE(bar_->isMarquee);
    EXPECT_EQ((std::vector<UINT_PTR>{10551}), timersKilled);
}

TEST_F(ProgressMarquee, MovesABlockWithEachTick) {
    Make(PBS_MARQUEE);
    Send(PBM_SETMARQUEE, TRUE, 0);
    EXPECT_EQ((Range{0, 0}), Filled(kAccentColor));
    for (int tick = 0; tick < 5; ++tick) Send(WM_TIMER, kMarqueeTimer);
    EXPECT_EQ((Range{2, 50}), Filled(kAccentColor));
    for (int tick = 0; tick < 15; ++tick) Send(WM_TIMER, kMarqueeTimer);
    EXPECT_EQ((Range{70, 200}), Filled(kAccentColor)) << "half as long as the bar";
    Send(WM_TIMER, 1);
    EXPECT_EQ((Range{70, 200}), Filled(kAccentColor)) << "another timer's tick";
}

TEST_F(ProgressMarquee, EndsWhenTheStyleIsTakenOff) {
    Make(PBS_MARQUEE);
    Send(PBM_SETMARQUEE, TRUE, 0);
    const LONG_PTR style = GetWindowLongPtrW(window_, GWL_STYLE);
    SetWindowLongPtrW(window_, GWL_STYLE, style | WS_TABSTOP);
    EXPECT_TRUE(bar_->isMarquee) << "another style";
    SetWindowLongPtrW(window_, GWL_STYLE, style & ~LONG_PTR{PBS_MARQUEE});
    EXPECT_FALSE(bar_->isMarquee);
    EXPECT_EQ((std::vector<UINT_PTR>{10551}), timersKilled);
    Send(PBM_SETPOS, 50);
    EXPECT_EQ((Range{2, 130}), Filled(kAccentColor));
}

TEST_F(ProgressMarquee, EndsWithTheWindow) {
    Make(PBS_MARQUEE);
    Send(PBM_SETMARQUEE, TRUE, 0);
    DestroyWindow(window_);
    EXPECT_EQ((std::vector<UINT_PTR>{10551}), timersKilled);
    EXPECT_EQ(nullptr, bar_->window);
}

} // namespace
