// Flat push buttons whose window goes, comes again, moves or is disabled while the mouse is on it.
#include "ObLibX/src/controls/ControlImages.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLibX/controls/ButtonFixture.h"

namespace {

using namespace buttontest;

class ReopenedButton : public FlatButton {};

// As after a click on Cancel, which has ended the hover, but not its colours.
TEST_F(ReopenedButton, IsIdleAfterTheClickThatClosedItsDialog) {
    Hover(kPlain);
    while (Tick()) continue;
    Down(kPlain);
    Up(kPlain);
    Reopen();
    EXPECT_EQ(kFill, PixelOf(kPlain, 1, 1));
    EXPECT_EQ(kFrame, PixelOf(kPlain, 0, 0));
}

// As after Esc.
TEST_F(ReopenedButton, IsHotOnlyOnceTheMouseIsOnItAgain) {
    Hover(kPlain);
    Tick();
    Reopen();
    EXPECT_FALSE(Button(kPlain).isHot);
    EXPECT_EQ(kFill, PixelOf(kPlain, 1, 1));
    Fakes().tracked.clear();
    Hover(kPlain);
    ASSERT_EQ(1u, Fakes().tracked.size());
    EXPECT_EQ(Item(kPlain), Fakes().tracked[0].hwndTrack);
    Leave(kPlain);
    EXPECT_EQ(kFrame, PixelOf(kPlain, 0, 0));
}

TEST_F(ReopenedButton, IsNotPressedAnyMore) {
    Down(kPlain);
    Reopen();
    EXPECT_FALSE(Button(kPlain).isDown || Button(kPlain).isPressed);
    EXPECT_EQ(kFill, PixelOf(kPlain, 1, 1));
}

TEST_F(ReopenedButton, OfSettingsHasNoFrame) {
    Hover(kSettings);
    Reopen();
    EXPECT_EQ(0, Button(kSettings).hasFrame);
    EXPECT_EQ(kWhite, PixelOf(kSettings, 0, 0));
}

TEST_F(ReopenedButton, ThatDropsHasNoSplitAgain) {
    Reopen();
    BUTTON_SPLITINFO info{};
    info.mask = BCSIF_STYLE;
    EXPECT_TRUE(Send(kDrop, BCM_GETSPLITINFO, 0, reinterpret_cast<LPARAM>(&info)));
    EXPECT_NE(0u, info.uSplitStyle & BCSS_NOSPLIT);
    EXPECT_EQ(0, CountOf(kDrop, 0xA8A8A8)) << "no line between two parts";
}

TEST_F(FlatButton, IsIdleAndDisabledAfterAClickThatDisablesIt) {
    dialog_->onCommand = [&] { EnableWindow(Item(kPlain), FALSE); };
    Hover(kPlain);
    while (Tick()) continue;
    Down(kPlain);
    Up(kPlain);
    EXPECT_EQ(kFill, PixelOf(kPlain, 1, 1));
    EXPECT_EQ(kFrame, PixelOf(kPlain, 0, 0));
    EXPECT_EQ(kNoColor, Button(kPlain).animatedColor);
}

TEST_F(FlatButton, EndsItsFadeAfterAClickThatDisablesIt) {
    dialog_->onCommand = [&] { EnableWindow(Item(kPlain), FALSE); };
    Hover(kPlain);
    Tick();
    Down(kPlain);
    Up(kPlain);
    EXPECT_TRUE(Fakes().timers.empty());
    EXPECT_EQ(kFill, PixelOf(kPlain, 1, 1));
}

TEST_F(FlatButton, OfSettingsHasNoFrameAfterAClickThatDisablesIt) {
    dialog_->onCommand = [&] { EnableWindow(Item(kSettings), FALSE); };
    Hover(kSettings);
    Down(kSettings);
    Up(kSettings);
    EXPECT_EQ(0, Button(kSettings).hasFrame);
    EXPECT_EQ(kWhite, PixelOf(kSettings, 0, 0));
}

TEST_F(FlatButton, WithoutMouseStatesForgetsAPressWhenTheCaptureIsLost) {
    Button(kPlain).noMouseStates = true;
    Down(kPlain);
    EXPECT_TRUE(Button(kPlain).isPressed);
    SetCapture(dialog_->window);
    EXPECT_FALSE(Button(kPlain).isPressed);
    EXPECT_EQ(kFill, PixelOf(kPlain, 1, 1));
    ReleaseCapture();
}

// The ring is on the parent, where the system doesn't invalidate it with the button.
TEST_F(FlatButton, TakesItsRingAlongWhenItIsHidden) {
    Hover(kBlue);
    ASSERT_EQ(kAccent, BesideOf(kBlue, 2));
    ShowWindow(Item(kBlue), SW_HIDE);
    EXPECT_EQ(kWhite, BesideOf(kBlue, 2));
}

TEST_F(FlatButton, TakesItsRingAlongWhenItIsMovedOrResized) {
    const POINT place = CornerOf(kBlue);
    Hover(kBlue);
    SetWindowPos(Item(kBlue), nullptr, place.x + 7, place.y + 7, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    EXPECT_EQ(kWhite, BesideOf(place, 2));
    Leave(kBlue);
    Down(kBlue);
    ASSERT_EQ(kAccent, BesideOf(kBlue, 2));
    SetWindowPos(Item(kBlue), nullptr, 0, 0, 20, 10, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(kWhite, BesideOf(kBlue, 2));
    Up(kBlue);
}

TEST_F(FlatButton, KeepsItsRingWhenOnlyItsPlaceAmongWindowsChanges) {
    Hover(kBlue);
    SetWindowPos(Item(kBlue), HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    EXPECT_EQ(kAccent, BesideOf(kBlue, 2));
    Leave(kBlue);
}

// ---- where a picture is beside a text, as painted

class PictureBesideText : public FlatButton {
protected:
    // The browser's picture beside a text that leaves no pixels.
    void SetUp() override {
        FlatButton::SetUp();
        SetWindowTextW(Item(kBottomRight), L" ");
        HideCues(kBottomRight, UISF_HIDEFOCUS);
        Plain().images = ImageSet(ImageList(ControlImage::Browser));
    }
    ObFlatBtn& Plain() { return Button(kBottomRight); }
    // Around all pixels inside the frame that aren't the fill.
    PixelRect Painted() {
        Plain().Repaint();
        const auto pixels = ShownPixels(kBottomRight);
        const SIZE size = SizeOf(kBottomRight);
        PixelRect area{size.cx, size.cy, 0, 0};
        for (int y = 1; y < size.cy - 1; ++y) {
            for (int x = 1; x < size.cx - 1; ++x) {
                if (pixels[static_cast<std::size_t>(y * size.cx + x)] == kFill) continue;
                area = {std::min(area.left, x), std::min(area.top, y), std::max(area.right, x + 1),
                        std::max(area.bottom, y + 1)};
            }
        }
        return area;
    }
    static void ExpectInside(const PixelRect& painted, const PixelRect& place) {
        EXPECT_FALSE(painted.IsEmpty());
        EXPECT_LE(place.left, painted.left);
        EXPECT_LE(place.top, painted.top);
        EXPECT_GE(place.right, painted.right);
        EXPECT_GE(place.bottom, painted.bottom);
    }
    void SetAlignment(LONG_PTR bits) {
        constexpr LONG_PTR kAll = BS_LEFT | BS_RIGHT | BS_TOP | BS_BOTTOM;
        const LONG_PTR style = GetWindowLongPtrW(Item(kBottomRight), GWL_STYLE);
        SetWindowLongPtrW(Item(kBottomRight), GWL_STYLE, (style & ~kAll) | bits);
    }
    const int side_ = Scale(16); // of the picture
    const int padding_ = Scale(8);
};

TEST_F(PictureBesideText, IsAtTheLeftAfterAPadding) {
    SetAlignment(BS_LEFT);
    const int top = (SizeOf(kBottomRight).cy - side_) / 2;
    ExpectInside(Painted(), {padding_, top, padding_ + side_, top + side_});
    const RECT text = TextOf(kBottomRight).rect;
    EXPECT_EQ(2 * padding_ + side_, text.left) << "the text begins after it";
}

TEST_F(PictureBesideText, IsAtTheRightBeforeAPadding) {
    Plain().imageSide = 1;
    SetAlignment(BS_RIGHT);
    const SIZE size = SizeOf(kBottomRight);
    const int top = (size.cy - side_) / 2;
    const int right = size.cx - padding_;
    ExpectInside(Painted(), {right - side_, top, right, top + side_});
    EXPECT_EQ(right - side_ - padding_ - 1, TextOf(kBottomRight).rect.right);
}

TEST_F(PictureBesideText, IsAtTheVeryEdgeWithoutAGap) {
    Plain().imageSide = 1;
    Plain().imageGap = false;
    SetAlignment(BS_RIGHT | BS_TOP);
    const SIZE size = SizeOf(kBottomRight);
    ExpectInside(Painted(), {size.cx - side_, 0, size.cx, side_});
    EXPECT_EQ(size.cx - side_ - 1 - padding_, TextOf(kBottomRight).rect.right);
}

TEST_F(PictureBesideText, IsAboveATextThatIsBelowIt) {
    Plain().imageBesideText = 1;
    SetAlignment(BS_TOP);
    const SIZE size = SizeOf(kBottomRight);
    const int left = (size.cx - side_) / 2;
    ExpectInside(Painted(), {left, 0, left + side_, side_});
    EXPECT_EQ(side_ + 3 * padding_ + 1, TextOf(kBottomRight).rect.top);
}

} // namespace
