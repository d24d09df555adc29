// The flat slider: place, presses, keys, drags, messages and painting.
#include "ObLibX/src/controls/ObCustSlider.h"

#include <commctrl.h>

#include "ObLibX/src/controls/ScrollRepeat.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLibX/controls/BarFixture.h"

namespace {

using namespace ObLibX;
using obtest::PaintedPixels;
using obtest::Scrolled;

// A horizontal slider of 210 pixels with the range 0 to 100, at 50.
class SliderTest : public obtest::BarTest {
protected:
    void SetUp() override {
        BarTest::SetUp();
        window_ = Child(L"Static", 0, {100, 50, 100 + 200 + Scale(10), 150});
        slider_.Attach(window_);
        SendMessageW(window_, TBM_SETPOS, TRUE, 50);
    }
    Scrolled Horizontal(int code, int value = 0) const {
        return {WM_HSCROLL, code, value, window_};
    }
    std::int32_t Position() const {
        return static_cast<std::int32_t>(SendMessageW(window_, TBM_GETPOS, 0, 0));
    }
    // The middle of the thumb.
    int ThumbX() const { return slider_.Layout().thumb.Centre().x; }

    ObFlatSlider slider_{1001, ScrollOrientation::Horizontal};
    HWND window_ = nullptr;
};

class SliderPlace : public SliderTest {};

TEST_F(SliderPlace, Is28PixelsAcrossAroundItsMiddle) {
    const RECT place = PlaceOf(window_);
    EXPECT_EQ(Scale(28), place.bottom - place.top);
    EXPECT_EQ(50 + (100 - Scale(28)) / 2, place.top);
    EXPECT_EQ(100, place.left);
    const HWND window = Child(L"Static", 0, {300, 200, 310, 400});
    ObFlatSlider upright(1002, ScrollOrientation::Vertical);
    upright.Attach(window);
    const RECT narrow = PlaceOf(window);
    EXPECT_EQ(Scale(28), narrow.right - narrow.left);
    EXPECT_EQ(300 + (10 - Scale(28)) / 2, narrow.left);
    EXPECT_EQ(200, narrow.top);
    DestroyWindow(window);
}

TEST_F(SliderPlace, HasAThumbOfTenPixelsAndATrackOfFour) {
    EXPECT_EQ(Scale(10), slider_.Layout().thumbLength);
    EXPECT_EQ(Scale(4), slider_.Layout().track.Height());
    EXPECT_EQ(0, slider_.Layout().arrowLength);
    EXPECT_EQ(100, slider_.Layout().thumbOffset);
}

TEST_F(SliderPlace, HasAPageOfAFifthOfEachRange) {
    EXPECT_EQ(20, slider_.Range().page);
    SendMessageW(window_, TBM_SETRANGE, TRUE, MAKELPARAM(0, 50));
    EXPECT_EQ(10, slider_.Range().page);
    SendMessageW(window_, TBM_SETPAGESIZE, 0, 3);
    EXPECT_EQ(3, slider_.Range().page);
    SendMessageW(window_, TBM_SETRANGEMAX, TRUE, 100);
    EXPECT_EQ(20, slider_.Range().page);
    SendMessageW(window_, SBM_SETRANGE, 0, 4);
    EXPECT_EQ(0, slider_.Range().page);
    SCROLLINFO info{sizeof info, SIF_RANGE | SIF_PAGE, 0, 100, 9, 0, 0};
    SendMessageW(window_, SBM_SETSCROLLINFO, TRUE, reinterpret_cast<LPARAM>(&info));
    EXPECT_EQ(9, slider_.Range().page) << "a page that comes with a range counts";
}

class SliderPress : public SliderTest {};

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

class SliderKeys : public SliderTest {};

TEST_F(SliderKeys, MoveByATenthAndReportTheirCodes) {
    const struct {
        WPARAM key;
        int position;
        int code;
    } rows[] = {{VK_PRIOR, 60, 2}, {VK_UP, 70, 0},   {VK_RIGHT, 80, 0},
                {VK_NEXT, 70, 3},  {VK_LEFT, 60, 1}, {VK_DOWN, 50, 1}};
    for (const auto& row : rows) {
        scrolled_.clear();
        Key(window_, row.key);
        EXPECT_EQ(row.position, Position()) << row.key;
        EXPECT_EQ(std::vector{Horizontal(row.code)}, scrolled_) << row.key;
    }
}

TEST_F(SliderKeys, EndAtTheRangeAndLeaveOtherKeys) {
    for (int press = 0; press < 8; ++press) Key(window_, VK_UP);
    EXPECT_EQ(100, Position());
    for (int press = 0; press < 12; ++press) Key(window_, VK_NEXT);
    EXPECT_EQ(0, Position());
    scrolled_.clear();
    Key(window_, VK_HOME);
    Key(window_, VK_END);
    EXPECT_TRUE(scrolled_.empty());
    EXPECT_EQ(0, Position());
}

TEST_F(SliderKeys, MoveByOneInASmallRange) {
    SendMessageW(window_, TBM_SETRANGE, TRUE, MAKELPARAM(0, 4));
    SendMessageW(window_, TBM_SETPOS, TRUE, 2);
    Key(window_, VK_RIGHT);
    EXPECT_EQ(3, Position());
    Key(window_, VK_PRIOR);
    EXPECT_EQ(4, Position());
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

// A stock trackbar gets what the slider gets; the results must be equal.
class SliderComparison : public SliderTest {
protected:
    void SetUp() override {
        SliderTest::SetUp();
        INITCOMMONCONTROLSEX classes{sizeof classes, ICC_BAR_CLASSES};
        InitCommonControlsEx(&classes);
        stock_ = Child(TRACKBAR_CLASSW, TBS_HORZ, {100, 200, 310, 230});
        ASSERT_NE(nullptr, stock_);
        SendMessageW(stock_, TBM_SETPOS, TRUE, 50);
    }
    static std::vector<LRESULT> State(HWND bar) {
        return {SendMessageW(bar, TBM_GETPOS, 0, 0), SendMessageW(bar, TBM_GETRANGEMIN, 0, 0),
                SendMessageW(bar, TBM_GETRANGEMAX, 0, 0)};
    }
    void ExpectSame(UINT message, WPARAM wParam, LPARAM lParam, const std::string& what) {
        EXPECT_EQ(SendMessageW(stock_, message, wParam, lParam),
                  SendMessageW(window_, message, wParam, lParam))
            << what;
        EXPECT_EQ(State(stock_), State(window_)) << what;
    }
    HWND stock_ = nullptr;
};

constexpr int kNumbers[] = {0, 1, -1, 5, 40, 100, -40, 5000, 40000, INT_MAX, INT_MIN};

TEST_F(SliderComparison, AnswersPositionsAlike) {
    for (const int value : kNumbers) {
        ExpectSame(TBM_SETPOS, TRUE, value, "position " + std::to_string(value));
    }
}

TEST_F(SliderComparison, AnswersRangesAlike) {
    for (const int minimum : kNumbers) {
        for (const int maximum : kNumbers) {
            if (minimum > maximum) continue;
            const std::string what = std::to_string(minimum) + " to " + std::to_string(maximum);
            ExpectSame(TBM_SETRANGEMIN, TRUE, INT_MIN, what);
            ExpectSame(TBM_SETRANGEMAX, TRUE, maximum, what);
            ExpectSame(TBM_SETRANGEMIN, TRUE, minimum, what);
            ExpectSame(TBM_SETPOS, TRUE, maximum / 2, what);
        }
    }
    ExpectSame(TBM_SETRANGE, TRUE, MAKELPARAM(-7, 30000), "both at once");
    ExpectSame(TBM_SETPAGESIZE, 0, 11, "page");
    ExpectSame(TBM_SETPAGESIZE, 0, 12, "page again");
    ExpectSame(TBM_SETPAGESIZE, 0, 0, "no page");
    ExpectSame(TBM_SETPAGESIZE, 0, -1, "the page of the range");
    ExpectSame(TBM_SETPAGESIZE, 0, 5, "after the page of the range");
}

TEST_F(SliderComparison, SurvivesARangeUpsideDown) {
    SendMessageW(window_, TBM_SETRANGE, TRUE, MAKELPARAM(100, 0));
    for (const WPARAM key : {VK_UP, VK_DOWN}) Key(window_, key);
    Press(window_, 3, 5);
    Move(window_, 150, 5);
    LetGo(window_, 150, 5);
    EXPECT_EQ(100, Position());
    SendMessageW(window_, TBM_SETRANGEMIN, TRUE, INT_MIN);
    SendMessageW(window_, TBM_SETRANGEMAX, TRUE, INT_MAX);
    Key(window_, VK_UP);
    EXPECT_EQ(429496729, Position()) << "from 0, which was the maximum meanwhile";
}

class SliderPainting : public SliderTest {
protected:
    PixelRect Thumb() const { return slider_.Layout().thumb; }
    COLORREF TrackPixel(const PaintedPixels& pixels) const {
        return pixels.At(5, slider_.Layout().track.top + 1);
    }
    COLORREF ThumbPixel(const PaintedPixels& pixels) const {
        return pixels.At(ThumbX(), Thumb().Centre().y);
    }
};

TEST_F(SliderPainting, HasAFramedThumbOnAThinTrack) {
    SetFocus(parent_.Get());
    const PaintedPixels pixels(window_);
    EXPECT_EQ(GetParentBackground(window_), pixels.At(5, 1));
    EXPECT_EQ(0xCCCCCCu, TrackPixel(pixels));
    EXPECT_EQ(0xE6E6E6u, ThumbPixel(pixels));
    EXPECT_TRUE(pixels.IsFramed(Thumb(), 0xCCCCCC));
    EXPECT_EQ(0, pixels.Count(pixels.Area(), 0x123456));
}

TEST_F(SliderPainting, IsPalerWhenDisabled) {
    EnableWindow(window_, FALSE);
    const PaintedPixels pixels(window_);
    EXPECT_EQ(0xF2F2F2u, TrackPixel(pixels));
    EXPECT_EQ(0xEDEDEDu, ThumbPixel(pixels));
    EXPECT_TRUE(pixels.IsFramed(Thumb(), 0xEBEBEB));
}

TEST_F(SliderPainting, FramesTheThumbUnderTheMouse) {
    SetFocus(parent_.Get());
    Move(window_, ThumbX(), 8);
    EXPECT_TRUE(PaintedPixels(window_).IsFramed(Thumb(), GetPaletteColor(7)));
    HideFocusCues(window_);
    Press(window_, ThumbX(), 8);
    EXPECT_TRUE(PaintedPixels(window_).IsFramed(Thumb(), kAccentColor));
    LetGo(window_, -9, 8);
}

TEST_F(SliderPainting, ShowsTheFocusAroundTheWindowAndOnTheThumb) {
    SetFocus(window_);
    const PixelRect thumb = Thumb();
    const PixelRect side{thumb.left, thumb.top + 2, thumb.left + 1, thumb.bottom - 2};
    {
        const PaintedPixels pixels(window_);
        EXPECT_EQ(side.Height(), pixels.Count(side, kAccentColor));
        const PixelRect edge{0, 0, pixels.Area().right, 1};
        EXPECT_LT(pixels.Count(edge, GetParentBackground(window_)), edge.Width()) << "dotted";
    }
    SetFocus(parent_.Get());
    EXPECT_EQ(0, PaintedPixels(window_).Count(side, kAccentColor));
}

TEST_F(SliderPainting, HasTheSystemsColoursInHighContrast) {
    obtest::isBarContrast = true;
    SetFocus(window_);
    const PaintedPixels pixels(window_);
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), ThumbPixel(pixels));
    const PixelRect thumb = Thumb();
    const PixelRect side{thumb.left, thumb.top + 2, thumb.left + 1, thumb.bottom - 2};
    EXPECT_EQ(side.Height(), pixels.Count(side, GetSysColor(COLOR_WINDOWFRAME)))
        << "no accent frame for the focus";
}

class SliderAccessible : public SliderTest {};

TEST_F(SliderAccessible, IsASliderWithItsValueAndRange) {
    const auto seen = obtest::AccessibleOf(window_);
    EXPECT_EQ(LONG{ROLE_SYSTEM_SLIDER}, seen.role);
    EXPECT_EQ(L"50", seen.value);
    EXPECT_EQ(L"0 - 100", seen.description);
    Key(window_, VK_RIGHT);
    EXPECT_EQ(L"60", obtest::AccessibleOf(window_).value);
}

} // namespace
