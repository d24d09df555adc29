// The flat slider: place, keys, messages and painting.
#include <oleacc.h>

#include <cstdio>

#include "ObLibX/src/dialog/Palette.h"
#include "tests/unit/ObLibX/controls/SliderFixture.h"

namespace {

using namespace ObLibX;
using namespace obtest;

class SliderPlace : public SliderTest {};

TEST_F(SliderPlace, SurvivesNoSize) {
    SetWindowPos(window_, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOZORDER);
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    EXPECT_EQ(0, slider_.Layout().trackLength);
    EXPECT_EQ(0, slider_.Layout().thumbLength);
    Press(window_, 0, 0);
    Move(window_, 5, 0);
    LetGo(window_, 5, 0);
    EXPECT_EQ(50, Position());
    SetWindowPos(window_, nullptr, 0, 0, 100, 0, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(Scale(28), ClientArea(window_).Height());
    EXPECT_EQ(Scale(10), slider_.Layout().thumbLength);
}

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

class SliderKeys : public SliderTest {
protected:
    // Of a slider of 0 to 100 at 50, whose parent gets `message` for each key.
    void ExpectTenths(HWND window, const ObFlatSlider& slider, UINT message) {
        const struct {
            WPARAM key;
            int position;
            int code;
        } rows[] = {{VK_PRIOR, 60, 2}, {VK_UP, 70, 0},   {VK_RIGHT, 80, 0},
                    {VK_NEXT, 70, 3},  {VK_LEFT, 60, 1}, {VK_DOWN, 50, 1}};
        for (const auto& row : rows) {
            scrolled_.clear();
            Key(window, row.key);
            EXPECT_EQ(row.position, slider.Position()) << row.key;
            EXPECT_EQ((std::vector{Scrolled{message, row.code, 0, window}}), scrolled_) << row.key;
        }
    }
};

TEST_F(SliderKeys, MoveByATenthAndReportTheirCodes) { ExpectTenths(window_, slider_, WM_HSCROLL); }

TEST_F(SliderKeys, AreTheSameWhenItIsVertical) {
    const HWND window = Child(L"Static", 0, {400, 50, 430, 260});
    ObFlatSlider upright(1002, ScrollOrientation::Vertical);
    upright.Attach(window);
    SendMessageW(window, TBM_SETPOS, TRUE, 50);
    ExpectTenths(window, upright, WM_VSCROLL);
    DestroyWindow(window);
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
    const bool isWine = AreStockControlsOfWine();
    if (isWine) std::printf("note: stock sliders of Wine get no minimum above the maximum\n");
    for (const int minimum : kNumbers) {
        for (const int maximum : kNumbers) {
            if (minimum > maximum && isWine) continue;
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

TEST_F(SliderPainting, FramesTheThumbUnderTheMouseWithTheFocusToo) {
    SetFocus(window_);
    const PixelRect thumb = Thumb();
    const PixelRect side{thumb.left, thumb.top + 2, thumb.left + 1, thumb.bottom - 2};
    Move(window_, ThumbX(), 8);
    EXPECT_EQ(side.Height(), PaintedPixels(window_).Count(side, GetPaletteColor(7)));
    Move(window_, -9, 8);
    EXPECT_EQ(side.Height(), PaintedPixels(window_).Count(side, kAccentColor));
}

// The thumb comes to the mouse by the press itself.
TEST_F(SliderPainting, FramesNoThumbWhileAnotherPartIsPressed) {
    HideFocusCues(window_);
    Press(window_, 3, 5);
    Move(window_, ThumbX(), 5);
    EXPECT_TRUE(PaintedPixels(window_).IsFramed(Thumb(), 0xCCCCCC));
    LetGo(window_, ThumbX(), 5);
    EXPECT_TRUE(PaintedPixels(window_).IsFramed(Thumb(), GetPaletteColor(7)));
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
