// The gallery's page of scroll bars, sliders and progress bars: its picture, and a panel that is
// scrolled as a user does.
#include <commctrl.h>

#include "tests/ui/gallery/GalleryFixture.h"

namespace obtest {
namespace {

class BarsPage : public GalleryFixture {
protected:
    BarsPage() : GalleryFixture(L"bars") {}

    LRESULT PanelPosition() const {
        return SendMessageW(Item(OB_GALLERY_PANEL_BAR), SBM_GETPOS, 0, 0);
    }
    bool PanelIsAt(LRESULT position) const {
        return WaitUntil([&] { return PanelPosition() == position; });
    }
    void RunMarquee(bool isOn) const {
        SendMessageW(Item(OB_GALLERY_PROGRESS_MARQUEE), PBM_SETMARQUEE, isOn, 0);
    }
    void PressKey(int id, WPARAM key) const { PostMessageW(Item(id), WM_KEYDOWN, key, 1); }
    // At a place of the bar, counted from its start.
    void ClickBar(int along) const {
        const LPARAM point = MAKELPARAM(4, along);
        PostMessageW(Item(OB_GALLERY_PANEL_BAR), WM_LBUTTONDOWN, MK_LBUTTON, point);
        PostMessageW(Item(OB_GALLERY_PANEL_BAR), WM_LBUTTONUP, 0, point);
    }
    void TurnWheel(int delta) const {
        RECT panel{};
        GetWindowRect(Item(OB_GALLERY_PANEL), &panel);
        PostMessageW(Item(OB_GALLERY_PANEL_BAR), WM_MOUSEWHEEL,
                     MAKEWPARAM(0, static_cast<WORD>(delta)),
                     MAKELPARAM(panel.left + 5, panel.top + 5));
    }
};

// A moving block would keep the page from coming to rest.
TEST_F(BarsPage, ShowsItsControls) {
    RunMarquee(false);
    LookAt(page_, L"gallery-bars", 480, 300);
    for (const int id : {IDOK, IDCANCEL}) ExpectWholeText(Item(id), AtScale(6));
    RunMarquee(true);
    const auto moving = TakePicture(page_);
    ASSERT_TRUE(moving);
    KeepPicture(*moving, L"gallery-bars-moving", 480, 300);
}

TEST_F(BarsPage, ScrollsThePanelByBarWheelAndKeys) {
    RECT bar{};
    GetClientRect(Item(OB_GALLERY_PANEL_BAR), &bar);
    ASSERT_EQ(0, PanelPosition());
    ClickBar(bar.bottom - 2);
    EXPECT_TRUE(PanelIsAt(1)) << "the arrow";
    TurnWheel(-WHEEL_DELTA);
    EXPECT_TRUE(PanelIsAt(2)) << "the wheel";
    PressKey(OB_GALLERY_PANEL_BAR, VK_DOWN);
    EXPECT_TRUE(PanelIsAt(3)) << "a key";
    RunMarquee(false);
    LookAt(page_, L"gallery-bars-scrolled", 480, 300);
    TurnWheel(WHEEL_DELTA);
    EXPECT_TRUE(PanelIsAt(2));
    PressKey(OB_GALLERY_PANEL_BAR, VK_PRIOR);
    EXPECT_TRUE(PanelIsAt(0)) << "a page is more than two lines";
    PressKey(OB_GALLERY_PANEL_BAR, VK_NEXT);
    EXPECT_TRUE(WaitUntil([&] { return PanelPosition() > 3; }));
}

TEST_F(BarsPage, ShowsTheValuesOfBarAndSlider) {
    PressKey(OB_GALLERY_SLIDER, VK_RIGHT);
    EXPECT_TRUE(WaitUntil([&] { return ItemText(page_, OB_GALLERY_SLIDER_VALUE) == L"50"; }));
    PressKey(OB_GALLERY_ACROSS, VK_NEXT);
    EXPECT_TRUE(WaitUntil([&] { return ItemText(page_, OB_GALLERY_ACROSS_VALUE) == L"50"; }));
    PressKey(OB_GALLERY_ACROSS, VK_UP);
    EXPECT_TRUE(WaitUntil([&] { return ItemText(page_, OB_GALLERY_ACROSS_VALUE) == L"49"; }));
}

} // namespace
} // namespace obtest
