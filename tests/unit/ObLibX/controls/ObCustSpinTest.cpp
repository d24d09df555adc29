// The flat spin control: its edit, its place, the mouse and painting.
#include "ObLibX/src/controls/ObCustSpin.h"

#include <commctrl.h>

#include "ObLibX/src/controls/FittingImage.h"
#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/controls/ObCustPassword.h"
#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/dialog/Palette.h"
#include "tests/unit/ObLibX/controls/BarFixture.h"

namespace {

using namespace ObLibX;
using obtest::PaintedPixels;

constexpr COLORREF kLine = 0xDFDFDF;
constexpr COLORREF kGround = 0xF6F6F6;

// The edit of the fixture is of this class.
template <class Edit>
class SpinTestOf : public obtest::BarTest {
protected:
    void SetUp() override {
        BarTest::SetUp();
        INITCOMMONCONTROLSEX classes{sizeof classes, ICC_UPDOWN_CLASS};
        InitCommonControlsEx(&classes);
        MakeWindows();
    }
    void MakeWindows() {
        editWindow_ = Child(L"Edit", ES_NUMBER, {100, 50, 200, 80});
        window_ = Child(UPDOWN_CLASSW, UDS_SETBUDDYINT | UDS_ARROWKEYS, {200, 50, 218, 80});
        SendMessageW(window_, UDM_SETBUDDY, reinterpret_cast<WPARAM>(editWindow_), 0);
        SendMessageW(window_, UDM_SETRANGE32, 0, 100);
    }
    void AttachBoth() {
        edit_.Attach(editWindow_);
        spin_.Attach(window_);
        SendMessageW(window_, WM_NULL, 0, 0);
    }
    void TearDown() override {
        BarTest::TearDown();
        EXPECT_EQ(nullptr, edit_.spinControl);
        EXPECT_EQ(nullptr, spin_.edit);
        EXPECT_FALSE(spin_.fade.IsRunning());
    }
    RECT Frame() const { return PlaceOf(edit_.frameWindow); }

    Edit edit_{1001};
    ObFlatSpinCtrl spin_{1002};
    HWND editWindow_ = nullptr;
    HWND window_ = nullptr;
};

using SpinTest = SpinTestOf<ObFlatEdit>;

class SpinPlace : public SpinTest {};

class SpinOfPassword : public SpinTestOf<ObFlatPassword> {};

TEST_F(SpinOfPassword, FollowsIt) {
    AttachBoth();
    ASSERT_EQ(&edit_, spin_.edit);
    EXPECT_EQ(&spin_, edit_.spinControl);
    EXPECT_EQ(Frame().right - 2, PlaceOf(window_).right);
}

TEST_F(SpinPlace, LeavesTheFrameWidthOfItsEditAroundItsButtons) {
    edit_.frameWidth = 5;
    AttachBoth();
    EXPECT_EQ(5, spin_.layout.up.left);
    EXPECT_EQ(5, spin_.layout.up.top);
    EXPECT_EQ(ClientArea(window_).right - 5, spin_.layout.down.right);
    EXPECT_EQ(ClientArea(window_).bottom - 5, spin_.layout.down.bottom);
}

TEST_F(SpinPlace, HasTheLargestArrowBelowAButtonsHeightLessFour) {
    AttachBoth();
    const auto height = [](int scale) {
        return ImageSize(ImageOfScale(ControlImage::UpArrow, scale).Get()).cy;
    };
    for (const int pixels : {20, 30, 45, 60, 90, 200}) {
        SetWindowPos(editWindow_, nullptr, 100, 50, 200, pixels, SWP_NOZORDER);
        const int most = spin_.layout.up.Height() - 4;
        const std::int32_t scale = spin_.imageScale;
        EXPECT_TRUE(scale == 0 || height(scale) < most) << pixels;
        EXPECT_TRUE(scale == 7 || height(scale + 1) >= most) << pixels;
    }
    EXPECT_EQ(7, spin_.imageScale);
}

TEST_F(SpinPlace, SurvivesNoSize) {
    AttachBoth();
    SetWindowPos(window_, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOZORDER);
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    EXPECT_TRUE(spin_.layout.up.IsEmpty() && spin_.layout.down.IsEmpty());
    Move(window_, 0, 0);
    EXPECT_EQ(SpinPart::None, spin_.hotPart);
}

// The dialog's own decision.
TEST_F(SpinPlace, StaysHiddenWhereTheDialogHidIt) {
    ShowWindow(window_, SW_HIDE);
    AttachBoth();
    ASSERT_EQ(&edit_, spin_.edit);
    EXPECT_FALSE(IsWindowVisible(window_));
    ShowWindow(editWindow_, SW_HIDE);
    ShowWindow(editWindow_, SW_SHOW);
    EXPECT_FALSE(IsWindowVisible(window_));
}

TEST_F(SpinPlace, IsHiddenWithAnEditThatIsHiddenFromTheBeginning) {
    ShowWindow(editWindow_, SW_HIDE);
    AttachBoth();
    EXPECT_FALSE(IsWindowVisible(window_));
    ShowWindow(editWindow_, SW_SHOW);
    EXPECT_TRUE(IsWindowVisible(window_));
}

TEST_F(SpinPlace, IsFoundOnTheNextWindowsToo) {
    AttachBoth();
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    DestroyWindow(window_);
    DestroyWindow(editWindow_);
    MakeWindows();
    AttachBoth();
    ASSERT_EQ(&edit_, spin_.edit);
    EXPECT_EQ(Frame().right - 2, PlaceOf(window_).right);
}

TEST_F(SpinPlace, IsInsideTheFrameOfItsEdit) {
    const PixelRect before = RectInParent(window_);
    AttachBoth();
    ASSERT_EQ(&edit_, spin_.edit);
    EXPECT_EQ(&spin_, edit_.spinControl);
    const RECT frame = Frame();
    const RECT place = PlaceOf(window_);
    EXPECT_EQ(frame.right - 2, place.right);
    EXPECT_EQ(before.Width(), place.right - place.left);
    EXPECT_EQ(frame.top, place.top);
    EXPECT_EQ(frame.bottom, place.bottom);
    EXPECT_EQ(before, spin_.buddyRectangle);
}

TEST_F(SpinPlace, IsFoundWhenTheEditIsDressedLater) {
    spin_.Attach(window_);
    SendMessageW(window_, WM_NULL, 0, 0);
    EXPECT_EQ(nullptr, spin_.edit);
    edit_.Attach(editWindow_);
    SendMessageW(window_, WM_NULL, 0, 0);
    EXPECT_EQ(&edit_, spin_.edit);
}

TEST_F(SpinPlace, FollowsItsEdit) {
    AttachBoth();
    SetWindowPos(editWindow_, nullptr, 150, 120, 160, 40, SWP_NOZORDER);
    EXPECT_EQ(Frame().right - 2, PlaceOf(window_).right);
    EXPECT_EQ(Frame().top, PlaceOf(window_).top);
    ShowWindow(editWindow_, SW_HIDE);
    EXPECT_FALSE(IsWindowVisible(window_));
    ShowWindow(editWindow_, SW_SHOW);
    EXPECT_TRUE(IsWindowVisible(window_));
}

TEST_F(SpinPlace, IsAboveItsEditWhichDoesNotPaintOverIt) {
    AttachBoth();
    EXPECT_EQ(editWindow_, GetWindow(window_, GW_HWNDNEXT));
    EXPECT_NE(0, GetWindowLongPtrW(editWindow_, GWL_STYLE) & WS_CLIPSIBLINGS);
}

TEST_F(SpinPlace, SurvivesAnEditThatGoesFirst) {
    AttachBoth();
    DestroyWindow(editWindow_);
    EXPECT_EQ(nullptr, spin_.edit);
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
}

TEST_F(SpinPlace, TakesLeaveOfItsEdit) {
    AttachBoth();
    DestroyWindow(window_);
    EXPECT_EQ(nullptr, edit_.spinControl);
    SetWindowPos(editWindow_, nullptr, 150, 120, 160, 40, SWP_NOZORDER);
}

TEST_F(SpinPlace, StaysWhereItIsWithoutAnEdit) {
    SendMessageW(window_, UDM_SETBUDDY, 0, 0);
    spin_.Attach(window_);
    SendMessageW(window_, WM_NULL, 0, 0);
    EXPECT_EQ(200, PlaceOf(window_).left);
    EXPECT_FALSE(spin_.layout.up.IsEmpty());
}

// A stock one gets what the flat one gets.
class SpinComparison : public SpinTest {};

TEST_F(SpinComparison, CountsAndAnswersAlike) {
    AttachBoth();
    const HWND other = Child(L"Edit", ES_NUMBER, {100, 150, 200, 180});
    const HWND stock = Child(UPDOWN_CLASSW, UDS_SETBUDDYINT | UDS_ARROWKEYS, {200, 150, 218, 180});
    SendMessageW(stock, UDM_SETBUDDY, reinterpret_cast<WPARAM>(other), 0);
    SendMessageW(stock, UDM_SETRANGE32, 0, 100);
    const struct {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
    } rows[] = {{UDM_SETPOS32, 0, 7},
                {UDM_GETPOS32, 0, 0},
                {UDM_SETPOS, 0, 500},
                {UDM_GETPOS, 0, 0},
                {UDM_SETRANGE, 0, MAKELPARAM(50, 10)},
                {UDM_GETRANGE, 0, 0},
                {UDM_GETBASE, 0, 0},
                {UDM_SETBASE, 16, 0},
                {UDM_GETBASE, 0, 0},
                {UDM_GETACCEL, 0, 0},
                {UDM_GETUNICODEFORMAT, 0, 0},
                {WM_KEYDOWN, VK_UP, 1},
                {UDM_GETPOS32, 0, 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(SendMessageW(stock, row.message, row.wParam, row.lParam),
                  SendMessageW(window_, row.message, row.wParam, row.lParam))
            << row.message;
    }
    wchar_t stockText[20] = {};
    wchar_t flatText[20] = {};
    GetWindowTextW(other, stockText, 20);
    GetWindowTextW(editWindow_, flatText, 20);
    EXPECT_STREQ(stockText, flatText);
}

class SpinPainting : public SpinTest {
protected:
    void SetUp() override {
        SpinTest::SetUp();
        AttachBoth();
    }
    // A corner of a button, where no arrow is.
    COLORREF Up() const {
        return PaintedPixels(window_).At(spin_.layout.up.left, spin_.layout.up.top);
    }
    COLORREF Down() const {
        return PaintedPixels(window_).At(spin_.layout.down.left, spin_.layout.down.bottom - 1);
    }
    void MoveTo(const PixelRect& button) { Move(window_, button.left + 1, button.top + 1); }
};

TEST_F(SpinPainting, HasTwoButtonsInAFrameWithALineBetween) {
    const PaintedPixels pixels(window_);
    const PixelRect& area = pixels.Area();
    EXPECT_TRUE(pixels.IsFramed(area, kLine));
    EXPECT_TRUE(pixels.IsFramed({1, 1, area.right - 1, area.bottom - 1}, kLine));
    EXPECT_EQ(kGround, Up());
    EXPECT_EQ(kGround, Down());
    const PixelRect between{2, spin_.layout.up.bottom, area.right - 2, spin_.layout.down.top};
    EXPECT_EQ(2, between.Height());
    EXPECT_EQ(between.Width() * 2, pixels.Count(between, kLine));
    for (const PixelRect& button : {spin_.layout.up, spin_.layout.down}) {
        EXPECT_LT(pixels.Count(button, kGround), button.Width() * button.Height()) << "an arrow";
    }
}

TEST_F(SpinPainting, FadesTheHalfUnderTheMouse) {
    MoveTo(spin_.layout.up);
    EXPECT_EQ(SpinPart::Up, spin_.hotPart);
    EXPECT_TRUE(spin_.fade.IsRunning());
    spin_.SetAnimatedColor(0x112233);
    EXPECT_EQ(0x112233u, Up());
    EXPECT_EQ(kGround, Down());
    MoveTo(spin_.layout.down);
    EXPECT_EQ(kGround, Up());
    EXPECT_EQ(kGround, Down()) << "the fade begins again";
    EXPECT_TRUE(spin_.fade.IsRunning());
    SendMessageW(window_, WM_MOUSELEAVE, 0, 0);
    EXPECT_FALSE(spin_.fade.IsRunning());
    EXPECT_EQ(SpinPart::None, spin_.hotPart);
    EXPECT_FALSE(spin_.mouseTracked);
}

TEST_F(SpinPainting, EndsItsHoverWhenItIsDisabledAndWithItsWindow) {
    MoveTo(spin_.layout.up);
    spin_.SetAnimatedColor(0x112233);
    EnableWindow(window_, FALSE);
    EXPECT_EQ(SpinPart::None, spin_.hotPart);
    EXPECT_FALSE(spin_.mouseTracked || spin_.fade.IsRunning());
    EXPECT_EQ(kGround, Up());
    EnableWindow(window_, TRUE);
    MoveTo(spin_.layout.up);
    spin_.SetAnimatedColor(0x112233);
    DestroyWindow(window_);
    DestroyWindow(editWindow_);
    MakeWindows();
    AttachBoth();
    EXPECT_EQ(SpinPart::None, spin_.hotPart);
    EXPECT_FALSE(spin_.mouseTracked);
    EXPECT_EQ(kGround, Up());
}

TEST_F(SpinPainting, HasTheSystemsColoursWhenHighContrastComesWhileItFades) {
    MoveTo(spin_.layout.up);
    spin_.SetAnimatedColor(0x112233);
    obtest::isBarContrast = true;
    spin_.Refresh();
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), Up());
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), Down());
    obtest::isBarContrast = false;
}

TEST_F(SpinPainting, HasOtherArrowsWhenDisabled) {
    const auto arrow = [&] {
        const PaintedPixels pixels(window_);
        std::vector<COLORREF> colours;
        for (int x = spin_.layout.up.left; x < spin_.layout.up.right; ++x) {
            for (int y = spin_.layout.up.top; y < spin_.layout.up.bottom; ++y) {
                colours.push_back(pixels.At(x, y));
            }
        }
        return colours;
    };
    const auto enabled = arrow();
    EnableWindow(window_, FALSE);
    EXPECT_NE(enabled, arrow());
}

TEST_F(SpinPainting, HasTheSystemsFaceInHighContrast) {
    obtest::isBarContrast = true;
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), Up());
    MoveTo(spin_.layout.up);
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), Up());
}

TEST_F(SpinPainting, LeavesBorderAndBackgroundUnpainted) {
    EXPECT_EQ(0, SendMessageW(window_, WM_NCPAINT, 1, 0));
    EXPECT_NE(0, SendMessageW(window_, WM_ERASEBKGND, 0, 0));
}

} // namespace
