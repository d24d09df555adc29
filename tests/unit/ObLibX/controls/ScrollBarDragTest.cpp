// The flat scroll bar: presses that repeat, and the thumb that is dragged.
#include "ObLibX/src/controls/ObCustScroll.h"

#include "tests/unit/ObLibX/controls/ScrollBarFixture.h"

namespace {

using namespace ObLibX;
using namespace obtest;

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

// Somebody else's message loop or hook takes the press that was posted.
TEST_F(ScrollBarRepeat, BeginsAgainAfterAPressThatNeverCame) {
    PutCursor(Middle(), 1);
    Press(window_, Middle(), 1);
    for (int tick = 0; tick < 4; ++tick) Tick();
    MSG taken{};
    ASSERT_TRUE(PeekMessageW(&taken, window_, WM_LBUTTONDOWN, WM_LBUTTONDOWN, PM_REMOVE));
    LetGo(window_, Middle(), 1);
    scrolled_.clear();
    Press(window_, Middle(), 1);
    EXPECT_EQ(1u, scrolled_.size()) << "a real press isn't taken for the late one";
    for (int tick = 0; tick < 4; ++tick) Tick();
    EXPECT_TRUE(DeliverPress());
    EXPECT_EQ(2u, scrolled_.size());
    LetGo(window_, Middle(), 1);
}

// A panel may take the focus when it scrolls.
TEST_F(ScrollBarRepeat, DoesNotBeginWhenTheFocusWentMeanwhile) {
    onScrolled_ = [this](const Scrolled&) { SetFocus(parent_.Get()); };
    Press(window_, Middle(), 1);
    EXPECT_EQ(1u, scrolled_.size());
    EXPECT_TRUE(timersSet.empty());
    EXPECT_EQ(parent_.Get(), GetFocus());
    LetGo(window_, Middle(), 1);
}

// Of a bar whose presses leave the focus with another window, which it then scrolls.
TEST_F(ScrollBarRepeat, EndsWhenTheFocusGoesFromWhereItWas) {
    class Hosted : public ObFlatScrollbar {
    public:
        using ObFlatScrollbar::ObFlatScrollbar;
        void OnSetFocus() override {}
    };
    const HWND host = Child(L"Edit", 0, {400, 50, 500, 80});
    const HWND window = Child(L"Static", 0, {200, 50, 260, 284});
    Hosted bar(1002, ScrollOrientation::Vertical);
    bar.Attach(window);
    SetFocus(host);
    Press(window, Middle(), 1);
    EXPECT_TRUE(TheScrollRepeat().IsRunning(window));
    SendMessageW(window, WM_TIMER, kScrollRepeatTimer, 0);
    EXPECT_TRUE(TheScrollRepeat().IsRunning(window));
    SetFocus(parent_.Get());
    SendMessageW(window, WM_TIMER, kScrollRepeatTimer, 0);
    EXPECT_FALSE(TheScrollRepeat().IsRunning(window));
    LetGo(window, Middle(), 1);
    DestroyWindow(window);
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

// With its window or without.
TEST_F(ScrollBarRepeat, SurvivesAParentThatDeletesTheBar) {
    struct Way {
        const char* name;
        void (*act)(ObFlatScrollbar& bar);
    };
    const Way ways[] = {{"a press", [](ObFlatScrollbar& bar) { Press(bar.window, 3, 1); }},
                        {"a key", [](ObFlatScrollbar& bar) { Key(bar.window, VK_UP); }},
                        {"a drag",
                         [](ObFlatScrollbar& bar) {
                             const PixelPoint thumb = bar.Layout().thumb.Centre();
                             Press(bar.window, thumb.x, thumb.y);
                             Move(bar.window, thumb.x, thumb.y + 30);
                         }},
                        {"the end of a drag",
                         [](ObFlatScrollbar& bar) {
                             const HWND window = bar.window;
                             const PixelPoint thumb = bar.Layout().thumb.Centre();
                             Press(window, thumb.x, thumb.y);
                             LetGo(window, thumb.x, thumb.y);
                         }},
                        {"a place", [](ObFlatScrollbar& bar) {
                             bar.SetLastMouse({3, 120}), bar.ScrollHere();
                         }}};
    for (const Way& way : ways) {
        for (const bool isWindowThere : {true, false}) {
            SCOPED_TRACE(way.name);
            const HWND window = Child(L"Static", 0, {200, 50, 260, 284});
            Deletable<ObFlatScrollbar> bar(1002, ScrollOrientation::Vertical);
            bar->Attach(window);
            onScrolled_ = [&](const Scrolled&) {
                if (!isWindowThere) DestroyWindow(window);
                bar.Delete();
            };
            way.act(*bar);
            EXPECT_FALSE(bar.IsThere());
            EXPECT_FALSE(TheScrollRepeat().IsRunning(window));
            EXPECT_EQ(nullptr, GetCapture());
            if (isWindowThere) DestroyWindow(window);
        }
    }
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
    EXPECT_EQ(0, bar_.Layout().Travel());
    Press(window_, Middle(), Track(5));
    EXPECT_TRUE(bar_.IsDragging());
    Move(window_, Middle(), Track(60));
    Move(window_, Middle(), Track(-60));
    LetGo(window_, Middle(), Track(-60));
    EXPECT_EQ((std::vector{Vertical(SB_THUMBTRACK, 40), Vertical(SB_THUMBPOSITION, 40)}),
              scrolled_);
}

TEST_F(ScrollBarDrag, GoesOnWhenHighContrastComes) {
    Begin();
    Move(window_, Middle(), Track(94));
    isBarContrast = true;
    SendMessageW(window_, WM_SYSCOLORCHANGE, 0, 0);
    SendMessageW(window_, WM_THEMECHANGED, 0, 0);
    bar_.Refresh();
    EXPECT_TRUE(bar_.IsDragging());
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), PaintedPixels(window_).At(1, bar_.Layout().thumb.top + 1));
    Move(window_, Middle(), Track(98));
    LetGo(window_, Middle(), Track(98));
    EXPECT_EQ((std::vector{Vertical(SB_THUMBTRACK, 42), Vertical(SB_THUMBTRACK, 44),
                           Vertical(SB_THUMBPOSITION, 44)}),
              scrolled_);
}

} // namespace
