// The flat slider: presses beside the thumb, and drags.
#include "ObLibX/src/controls/ScrollRepeat.h"
#include "tests/unit/ObLibX/controls/SliderFixture.h"

namespace {

using namespace ObLibX;
using namespace obtest;

POINT fakeCursor{}; // on the screen
BOOL WINAPI FakeCursor(POINT* point) {
    *point = fakeCursor;
    return TRUE;
}

class SliderPress : public SliderTest {
protected:
    void SetUp() override {
        SliderTest::SetUp();
        ASSERT_TRUE(cursor_.Ok());
    }
    // Makes a tick due and delivers the press that it posts; false without one. The cursor is at a
    // place of the slider.
    bool Repeat(int x) const {
        fakeCursor = {x, 5};
        ClientToScreen(window_, &fakeCursor);
        SendMessageW(window_, WM_TIMER, kScrollRepeatTimer, 0);
        MSG message{};
        if (!PeekMessageW(&message, window_, WM_LBUTTONDOWN, WM_LBUTTONDOWN, PM_REMOVE)) {
            return false;
        }
        DispatchMessageW(&message);
        return true;
    }

private:
    ImportPatch<decltype(&GetCursorPos)> cursor_{"user32.dll", "GetCursorPos", &FakeCursor};
};

TEST_F(SliderPress, MovesAPageTowardsThePressAndReportsThePosition) {
    Press(window_, 3, 5);
    EXPECT_EQ(30, Position());
    EXPECT_TRUE(TheScrollRepeat().IsRunning(window_));
    LetGo(window_, 3, 5);
    EXPECT_FALSE(TheScrollRepeat().IsRunning(window_));
    Press(window_, 195, 5);
    LetGo(window_, 195, 5);
    EXPECT_EQ((std::vector{Horizontal(SB_THUMBPOSITION, 30), Horizontal(SB_THUMBPOSITION, 50)}),
              scrolled_);
    EXPECT_EQ(window_, GetFocus());
}

TEST_F(SliderPress, EndsAtTheRange) {
    for (int press = 0; press < 5; ++press) {
        Press(window_, 1, 5);
        LetGo(window_, 1, 5);
    }
    EXPECT_EQ(0, Position());
}

TEST_F(SliderPress, MovesNothingWhereAFifthOfTheRangeIsNothing) {
    SendMessageW(window_, TBM_SETRANGE, TRUE, MAKELPARAM(0, 4));
    SendMessageW(window_, TBM_SETPOS, TRUE, 2);
    Press(window_, 1, 5);
    LetGo(window_, 1, 5);
    EXPECT_EQ(2, Position());
}

TEST_F(SliderPress, NeverMovesAwayFromThePress) {
    for (const int page : {-1, -7, INT_MIN}) {
        SendMessageW(window_, TBM_SETPAGESIZE, 0, page);
        EXPECT_EQ(20, slider_.Range().page) << page;
        const std::int32_t before = Position();
        Press(window_, 1, 5);
        LetGo(window_, 1, 5);
        EXPECT_LE(Position(), before) << page;
    }
}

TEST_F(SliderPress, RepeatsWhileItIsHeldAndEndsAtTheMouse) {
    SendMessageW(window_, TBM_SETPOS, TRUE, 0);
    // Between the thumb at 40 and the thumb at 60.
    const int held = 110;
    Press(window_, held, 5);
    EXPECT_EQ(20, Position());
    for (int tick = 1; tick < kScrollRepeatDelay; ++tick) EXPECT_FALSE(Repeat(held)) << tick;
    EXPECT_TRUE(Repeat(held));
    EXPECT_EQ(40, Position());
    EXPECT_TRUE(Repeat(held));
    EXPECT_EQ(60, Position());
    EXPECT_TRUE(Repeat(held));
    EXPECT_EQ(60, Position()) << "it doesn't swing around the mouse";
    EXPECT_FALSE(TheScrollRepeat().IsRunning(window_));
    EXPECT_FALSE(Repeat(held));
    EXPECT_EQ((std::vector{Horizontal(SB_THUMBPOSITION, 20), Horizontal(SB_THUMBPOSITION, 40),
                           Horizontal(SB_THUMBPOSITION, 60)}),
              scrolled_);
    LetGo(window_, held, 5);
    Press(window_, 3, 5);
    EXPECT_EQ(40, Position()) << "the next press goes where it is";
    LetGo(window_, 3, 5);
}

TEST_F(SliderPress, EndsOnTheThumbWhichIsThenDragged) {
    SendMessageW(window_, TBM_SETPOS, TRUE, 0);
    const int held = 80 + Scale(10) / 2;
    Press(window_, held, 5);
    for (int tick = 0; tick < 2 + kScrollRepeatDelay; ++tick) Repeat(held);
    EXPECT_EQ(40, Position());
    EXPECT_TRUE(slider_.IsDragging());
    LetGo(window_, held, 5);
}

TEST_F(SliderPress, MovesAPageWhenItIsVertical) {
    const HWND window = Child(L"Static", 0, {400, 50, 430, 50 + 200 + Scale(10)});
    ObFlatSlider upright(1002, ScrollOrientation::Vertical);
    upright.Attach(window);
    SendMessageW(window, TBM_SETPOS, TRUE, 50);
    Press(window, 5, 3);
    LetGo(window, 5, 3);
    Press(window, 5, 195);
    LetGo(window, 5, 195);
    EXPECT_EQ((std::vector{Scrolled{WM_VSCROLL, SB_THUMBPOSITION, 30, window},
                           Scrolled{WM_VSCROLL, SB_THUMBPOSITION, 50, window}}),
              scrolled_);
    DestroyWindow(window);
}

TEST_F(SliderPress, SurvivesAParentThatDeletesTheSlider) {
    const HWND window = Child(L"Static", 0, {100, 200, 310, 240});
    for (const bool isWindowThere : {true, false}) {
        Deletable<ObFlatSlider> slider(1002, ScrollOrientation::Horizontal);
        slider->Attach(window);
        SendMessageW(window, TBM_SETPOS, TRUE, 50);
        onScrolled_ = [&](const Scrolled&) {
            if (!isWindowThere) DestroyWindow(window);
            slider.Delete();
        };
        Press(window, 3, 5);
        EXPECT_FALSE(slider.IsThere());
        EXPECT_FALSE(TheScrollRepeat().IsRunning(window));
        EXPECT_EQ(nullptr, GetCapture());
    }
}

class SliderDrag : public SliderTest {};

TEST_F(SliderDrag, ReportsValuesAndEndsAtTheLastOne) {
    Press(window_, ThumbX(), 5);
    Move(window_, ThumbX() - 50, 5);
    const std::int32_t tracked = scrolled_.back().value;
    EXPECT_EQ(tracked, Position()) << "a trackbar's position is that of its thumb";
    LetGo(window_, ThumbX(), 5);
    EXPECT_EQ(
        (std::vector{Horizontal(SB_THUMBTRACK, tracked), Horizontal(SB_THUMBPOSITION, tracked)}),
        scrolled_);
    EXPECT_EQ(tracked, slider_.Position());
    EXPECT_LT(tracked, 50);
}

TEST_F(SliderDrag, EndsBelowTheMaximumUnlessTheItemDataAllowsIt) {
    const auto dragged = [&] {
        scrolled_.clear();
        Press(window_, ThumbX(), 5);
        Move(window_, 5000, 5);
        const std::int32_t value = scrolled_.back().value;
        LetGo(window_, 5000, 5);
        return value;
    };
    EXPECT_EQ(81, dragged());
    EXPECT_EQ(81, Position());
    slider_.itemData = L"wmrkhslider";
    EXPECT_EQ(100, dragged());
    EXPECT_EQ(100, Position());
}

// A parent that accepts only some values, or none but the one from before.
TEST_F(SliderDrag, KeepsWhatTheParentSetsAtItsEnd) {
    std::int32_t given = 0;
    std::int32_t answered = 0;
    onScrolled_ = [&](const Scrolled& sent) {
        if (sent.code != SB_THUMBPOSITION) return;
        given = static_cast<std::int32_t>(SendMessageW(window_, SBM_GETPOS, 0, 0));
        SendMessageW(window_, TBM_SETPOS, TRUE, 50);
        answered = Position();
    };
    Press(window_, ThumbX(), 5);
    Move(window_, ThumbX() - 50, 5);
    const std::int32_t tracked = scrolled_.back().value;
    LetGo(window_, ThumbX(), 5);
    EXPECT_NE(50, tracked);
    EXPECT_EQ(tracked, given) << "the position is the dragged one when the parent is called";
    EXPECT_EQ(50, answered) << "within the notification";
    EXPECT_EQ(50, Position()) << "after it";
    EXPECT_EQ(100, slider_.Layout().thumbOffset);
}

TEST_F(SliderDrag, BeginsAtTheThumbOnly) {
    Press(window_, ThumbX() + Scale(10), 5);
    EXPECT_FALSE(slider_.IsDragging());
    LetGo(window_, ThumbX(), 5);
}

TEST_F(SliderDrag, MovesAlongAVerticalOne) {
    const HWND window = Child(L"Static", 0, {400, 50, 430, 50 + 200 + Scale(10)});
    ObFlatSlider upright(1002, ScrollOrientation::Vertical);
    upright.Attach(window);
    SendMessageW(window, TBM_SETPOS, TRUE, 50);
    const PixelPoint thumb = upright.Layout().thumb.Centre();
    Press(window, thumb.x, thumb.y);
    Move(window, thumb.x + 40, thumb.y - 50);
    LetGo(window, thumb.x + 40, thumb.y - 50);
    ASSERT_EQ(2u, scrolled_.size());
    EXPECT_EQ(UINT{WM_VSCROLL}, scrolled_[0].message);
    EXPECT_EQ(scrolled_[0].value, upright.Position());
    EXPECT_EQ(20, upright.Position()) << "50 of 200 pixels, which are 81 values";
    DestroyWindow(window);
}

// Takes the slider away in the middle of a drag.
struct Breaking {
    const char* name;
    void (*act)(HWND slider);
};
void PrintTo(const Breaking& breaking, std::ostream* out) { *out << breaking.name; }

class SliderBrokenDrag : public SliderTest, public testing::WithParamInterface<Breaking> {};

TEST_P(SliderBrokenDrag, KeepsTheValueThatTheParentHas) {
    std::vector<int> positions;
    onScrolled_ = [&](const Scrolled&) { positions.push_back(Position()); };
    Press(window_, ThumbX(), 5);
    Move(window_, ThumbX() - 50, 5);
    const std::int32_t tracked = scrolled_.back().value;
    ASSERT_NE(50, tracked);
    GetParam().act(window_);
    EXPECT_EQ(
        (std::vector{Horizontal(SB_THUMBTRACK, tracked), Horizontal(SB_THUMBPOSITION, tracked)}),
        scrolled_);
    EXPECT_EQ((std::vector{tracked, tracked}), positions);
    EXPECT_FALSE(slider_.IsDragging());
    EXPECT_EQ(tracked, slider_.Position());
    ShowWindow(window_, SW_SHOW);
    EXPECT_EQ(L"" + std::to_wstring(tracked), AccessibleOf(window_).value);
    ReleaseCapture();
}

TEST_P(SliderBrokenDrag, ReportsNothingWithoutAMove) {
    Press(window_, ThumbX(), 5);
    GetParam().act(window_);
    EXPECT_TRUE(scrolled_.empty());
    EXPECT_EQ(50, slider_.Position());
    ReleaseCapture();
}

INSTANTIATE_TEST_SUITE_P(
    Ways, SliderBrokenDrag,
    testing::Values(Breaking{"the capture goes",
                             [](HWND slider) { SetCapture(GetParent(slider)); }},
                    Breaking{"it is disabled", [](HWND slider) { EnableWindow(slider, FALSE); }},
                    Breaking{"it is hidden", [](HWND slider) { ShowWindow(slider, SW_HIDE); }}));

TEST_F(SliderDrag, ReportsNothingWhenItGoesWithItsParent) {
    Press(window_, ThumbX(), 5);
    Move(window_, ThumbX() - 50, 5);
    scrolled_.clear();
    parent_.Reset();
    EXPECT_TRUE(scrolled_.empty());
    EXPECT_FALSE(slider_.IsDragging());
    EXPECT_EQ(nullptr, GetCapture());
}

TEST_F(SliderDrag, GoesOnWhenHighContrastComes) {
    Press(window_, ThumbX(), 5);
    Move(window_, ThumbX() - 20, 5);
    isBarContrast = true;
    SendMessageW(window_, WM_SYSCOLORCHANGE, 0, 0);
    SendMessageW(window_, WM_THEMECHANGED, 0, 0);
    slider_.Refresh();
    EXPECT_TRUE(slider_.IsDragging());
    const PixelPoint thumb = slider_.Layout().thumb.Centre();
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), PaintedPixels(window_).At(thumb.x, thumb.y));
    scrolled_.clear();
    Move(window_, ThumbX() - 20, 5);
    EXPECT_EQ(1u, scrolled_.size());
    LetGo(window_, ThumbX(), 5);
}

} // namespace
