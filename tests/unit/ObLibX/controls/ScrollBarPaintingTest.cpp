// The flat scroll bar: what it shows, and what screen readers get of it.
#include "ObLibX/src/controls/ObCustScroll.h"

#include <commctrl.h>

#include <algorithm>

#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLibX/controls/ScrollBarFixture.h"

namespace {

using namespace ObLibX;
using namespace obtest;

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

// What is under the mouse isn't what is pressed.
TEST_F(ScrollBarPainting, FramesNoOtherPartWhileOneIsPressed) {
    HideFocusCues(window_);
    Press(window_, Middle(), 5);
    Move(window_, Middle(), Track(100));
    EXPECT_EQ(Thumb().Width() * Thumb().Height(), PaintedPixels(window_).Count(Thumb(), 0xCCCCCC));
    EXPECT_FALSE(PaintedPixels(window_).IsFramed(bar_.Layout().upArrow, kAccentColor));
    Move(window_, Middle(), 5);
    EXPECT_TRUE(PaintedPixels(window_).IsFramed(bar_.Layout().upArrow, kAccentColor)) << "back";
    Move(window_, Middle(), Track(100));
    LetGo(window_, Middle(), Track(100));
    EXPECT_TRUE(PaintedPixels(window_).IsFramed(Thumb(), GetPaletteColor(7)));
    Press(window_, Middle(), Track(5));
    Move(window_, Middle(), Bottom() - 5);
    EXPECT_FALSE(PaintedPixels(window_).IsFramed(bar_.Layout().downArrow, kAccentColor));
    LetGo(window_, Middle(), Bottom() - 5);
}

// The mouse doesn't move meanwhile.
TEST_F(ScrollBarPainting, HasTheSystemsColoursWhenHighContrastComesUnderTheMouse) {
    Move(window_, Middle(), Track(100));
    isBarContrast = true;
    SendMessageW(window_, WM_SYSCOLORCHANGE, 0, 0);
    bar_.Refresh();
    const PaintedPixels pixels(window_);
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), pixels.At(2, Thumb().top + 2));
    EXPECT_EQ(GetPaletteColor(7), pixels.At(0, Thumb().top + 2)) << "the frame of the hover";
    EXPECT_EQ(GetSysColor(COLOR_ACTIVECAPTION), GetPaletteColor(7));
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
    EXPECT_EQ(3 * Scale(1), pixels.Count(column, line)) << "three lines";
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
