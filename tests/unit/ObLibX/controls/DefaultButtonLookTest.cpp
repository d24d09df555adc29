// A button that has the accent colour because it is the default one.
#include "ObLibX/src/controls/DefaultButton.h"
#include "ObLibX/src/controls/ObCustBtn.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "tests/unit/ObLibX/controls/ControlFixture.h"
#include "tests/unit/ObLibX/controls/ControlTestIds.h"

namespace {

using namespace ObLibX;

constexpr int kPlain = 1001;
constexpr COLORREF kAccent = 0xC0761B;
constexpr COLORREF kWhite = 0xFFFFFF;

class DefaultButtonLook : public ControlsTest {
protected:
    void SetUp() override {
        ControlsTest::SetUp();
        Dress({{kPlain, &Make<ObFlatBtn>}});
        Open(OB_TEST_PUSH_BUTTONS);
        SetWindowLongPtrW(Item(kPlain), GWL_STYLE,
                          GetWindowLongPtrW(Item(kPlain), GWL_STYLE) | BS_DEFPUSHBUTTON);
        SettleDefaultButton(dialog_->window, {dialog_->GetControl(kPlain)});
        InvalidateRect(Item(kPlain), nullptr, FALSE);
        UpdateWindow(Item(kPlain));
    }
    // A pixel of the parent, two pixels outside the window's corner.
    COLORREF Beside() const {
        RECT rect{};
        GetWindowRect(Item(kPlain), &rect);
        MapWindowPoints(nullptr, dialog_->window, reinterpret_cast<POINT*>(&rect), 2);
        const ClientDc dc(dialog_->window);
        return GetPixel(dc.Get(), rect.left - 2, rect.top - 2);
    }
};

TEST_F(DefaultButtonLook, IsTheAccentWithWhiteTextInEachState) {
    EXPECT_EQ(kAccent, PixelOf(kPlain, 1, 1));
    EXPECT_EQ(kWhite, TextOf(kPlain).color);
    Send(kPlain, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(kAccent, PixelOf(kPlain, 1, 1));
    Send(kPlain, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    EXPECT_EQ(kAccent, PixelOf(kPlain, 1, 1));
    Send(kPlain, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
}

TEST_F(DefaultButtonLook, NeitherFadesNorHasARing) {
    EXPECT_EQ(kWhite, Beside());
    Send(kPlain, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_TRUE(Object<ObFlatBtn>(kPlain).isHot);
    EXPECT_TRUE(Fakes().timers.empty());
    EXPECT_EQ(kWhite, Beside());
    Send(kPlain, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    EXPECT_EQ(kWhite, Beside());
    Send(kPlain, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
}

} // namespace
