// A dialog with bars, combo boxes and a spin control that is opened again: each object is as at
// first. And what the dialog gives to the parts of a combo box.
#include <commctrl.h>

#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/controls/ObCustCombo.h"
#include "ObLibX/src/controls/ObCustProgress.h"
#include "ObLibX/src/controls/ObCustSlider.h"
#include "ObLibX/src/controls/ObCustSpin.h"
#include "ObLibX/src/dialog/ControlMaker.h"
#include "ObLibX/src/dialog/ObXFlatDlg.h"
#include "tests/unit/ObLibX/controls/BarFixture.h"
#include "tests/unit/ObLibX/controls/BarTestIds.h"

namespace {

using namespace ObLibX;
using namespace obtest;

class ReopenedBars : public BarTest {
protected:
    void SetUp() override {
        BarTest::SetUp();
        SetControlMaker({});
        INITCOMMONCONTROLSEX classes{sizeof classes, ICC_PROGRESS_CLASS | ICC_UPDOWN_CLASS};
        InitCommonControlsEx(&classes);
        ASSERT_TRUE(track_.Ok());
        leavesAsked.clear();
        dialog_ = std::make_unique<ObXFlatDlg>(OB_TEST_EVERY_BAR, nullptr, 0, false);
        progress_ = Add<ObFlatProgressBar>(1001);
        across_ = Add<ObFlatScrollbar>(1002, ScrollOrientation::Horizontal);
        upright_ = Add<ObFlatScrollbar>(1003, ScrollOrientation::Vertical);
        slider_ = Add<ObFlatSlider>(1004, ScrollOrientation::Horizontal);
        simple_ = Add<ObFlatComboBoxSimple>(1005);
        dropdown_ = Add<ObFlatComboBoxDropdown>(1006);
        list_ = Add<ObFlatComboBoxDropdownList>(1007);
        edit_ = Add<ObFlatEdit>(1008);
        spin_ = Add<ObFlatSpinCtrl>(1009);
        Open();
    }
    void TearDown() override {
        dialog_.reset();
        BarTest::TearDown();
    }
    void Open() {
        dialog_->Create(nullptr);
        ShowWindow(dialog_->window, SW_SHOW);
        RedrawWindow(dialog_->window, nullptr, nullptr,
                     RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    }
    void OpenAgain() {
        DestroyWindow(dialog_->window);
        Open();
    }
    template <class Class, class... Arguments>
    Class* Add(std::int32_t id, Arguments... arguments) {
        auto made = std::make_unique<Class>(id, arguments...);
        Class* const added = made.get();
        dialog_->AddControl(std::move(made));
        return added;
    }
    static void SetBar(const ObFlatScrollbar& bar) {
        SCROLLINFO info{sizeof info, SIF_ALL | SIF_DISABLENOSCROLL, 5, 6, 2, 5, 0};
        SendMessageW(bar.window, SBM_SETSCROLLINFO, TRUE, reinterpret_cast<LPARAM>(&info));
    }
    static void Hover(const ObFlatComboBoxDropdownBase& combo) {
        const PixelPoint in = combo.buttonRectangle.Centre();
        Move(combo.window, in.x, in.y);
    }

    std::unique_ptr<ObXFlatDlg> dialog_;
    ObFlatProgressBar* progress_ = nullptr;
    ObFlatScrollbar* across_ = nullptr;
    ObFlatScrollbar* upright_ = nullptr;
    ObFlatSlider* slider_ = nullptr;
    ObFlatComboBoxSimple* simple_ = nullptr;
    ObFlatComboBoxDropdown* dropdown_ = nullptr;
    ObFlatComboBoxDropdownList* list_ = nullptr;
    ObFlatEdit* edit_ = nullptr;
    ObFlatSpinCtrl* spin_ = nullptr;

private:
    ImportPatch<decltype(&TrackMouseEvent)> track_{"user32.dll", "TrackMouseEvent", &NoteTracking};
};

TEST_F(ReopenedBars, HaveTheirDefaults) {
    for (ObFlatScrollbar* const bar : {across_, upright_}) {
        SetBar(*bar);
        ASSERT_EQ(6, bar->Range().maximum);
    }
    SendMessageW(slider_->window, TBM_SETRANGE, TRUE, MAKELPARAM(10, 30));
    SendMessageW(slider_->window, TBM_SETPOS, TRUE, 20);
    SendMessageW(slider_->window, TBM_SETPAGESIZE, TRUE, 7);
    OpenAgain();
    for (ObFlatScrollbar* const bar : {across_, upright_, static_cast<ObFlatScrollbar*>(slider_)}) {
        EXPECT_EQ(0, bar->Position()) << bar->id;
        EXPECT_EQ(0, bar->Range().minimum) << bar->id;
        EXPECT_EQ(100, bar->Range().maximum) << bar->id;
        EXPECT_FALSE(bar->EnableArrows(ESB_ENABLE_BOTH)) << bar->id << " both are on";
    }
    EXPECT_EQ(0, across_->Range().page);
    EXPECT_EQ(20, slider_->Range().page) << "a fifth of the range";
}

TEST_F(ReopenedBars, AskAgainForTheMousesLeaving) {
    for (const ObFlatScrollbar* const bar : {across_, static_cast<ObFlatScrollbar*>(slider_)}) {
        Move(bar->window, 3, 3);
        ASSERT_EQ(bar->window, leavesAsked.back());
    }
    OpenAgain();
    leavesAsked.clear();
    for (const ObFlatScrollbar* const bar : {across_, static_cast<ObFlatScrollbar*>(slider_)}) {
        Move(bar->window, 3, 3);
        ASSERT_FALSE(leavesAsked.empty());
        EXPECT_EQ(bar->window, leavesAsked.back()) << bar->id;
    }
}

TEST_F(ReopenedBars, HaveNoPartUnderTheMouse) {
    for (ObFlatComboBoxDropdownBase* const combo :
         {static_cast<ObFlatComboBoxDropdownBase*>(dropdown_),
          static_cast<ObFlatComboBoxDropdownBase*>(list_)}) {
        Hover(*combo);
        combo->SetAnimatedColor(0x112233);
        ASSERT_TRUE(combo->buttonHot);
    }
    Move(spin_->window, spin_->layout.up.left + 1, spin_->layout.up.top + 1);
    ASSERT_EQ(SpinPart::Up, spin_->hotPart);
    OpenAgain();
    EXPECT_FALSE(dropdown_->buttonHot || list_->buttonHot);
    EXPECT_EQ(kNoColor, dropdown_->animatedButtonColor);
    EXPECT_EQ(kNoColor, list_->animatedButtonColor);
    EXPECT_EQ(SpinPart::None, spin_->hotPart);
    EXPECT_EQ(kNoColor, spin_->animatedColor);
    leavesAsked.clear();
    Hover(*list_);
    Move(spin_->window, spin_->layout.up.left + 1, spin_->layout.up.top + 1);
    EXPECT_EQ((std::vector{list_->window, spin_->window}), leavesAsked);
}

TEST_F(ReopenedBars, HaveTheSpinInTheFrameOfItsEdit) {
    const auto expectInside = [&](const char* when) {
        ASSERT_EQ(edit_, spin_->edit) << when;
        EXPECT_EQ(RectInParent(edit_->frameWindow).right - 2, RectInParent(spin_->window).right)
            << when;
        ShowWindow(edit_->window, SW_HIDE);
        EXPECT_FALSE(IsWindowVisible(spin_->window)) << when;
        ShowWindow(edit_->window, SW_SHOW);
        EXPECT_TRUE(IsWindowVisible(spin_->window)) << when;
    };
    expectInside("first");
    OpenAgain();
    expectInside("second");
    OpenAgain();
    expectInside("third");
}

TEST_F(ReopenedBars, HaveTheirPartsAndNoMarquee) {
    SendMessageW(progress_->window, PBM_SETMARQUEE, TRUE, 0);
    ASSERT_TRUE(progress_->isMarquee);
    OpenAgain();
    EXPECT_FALSE(progress_->isMarquee);
    EXPECT_EQ(Marquee{}, progress_->marquee);
    for (const ObFlatComboBoxBase* const combo :
         {static_cast<ObFlatComboBoxBase*>(simple_), static_cast<ObFlatComboBoxBase*>(dropdown_)}) {
        ASSERT_NE(nullptr, combo->editObject);
        EXPECT_EQ(combo->comboInfo.hwndItem, combo->editObject->window);
        EXPECT_EQ(combo->window, GetParent(combo->editObject->window));
        EXPECT_TRUE(IsWindow(combo->listWindow));
    }
}

// The edit of a combo box has an id of its own, which may be that of another control.
TEST_F(ReopenedBars, KeepTheirColoursFromThePartsOfOthers) {
    const HWND part = dropdown_->editObject->window;
    ASSERT_EQ(progress_->id, GetDlgCtrlID(part));
    const ClientDc dc(part);
    EXPECT_EQ(GetStockObject(WHITE_BRUSH), dialog_->OnCtlColorStatic(progress_->window, dc.Get()));
    EXPECT_NE(GetStockObject(WHITE_BRUSH), dialog_->OnCtlColorStatic(part, dc.Get()));
    EXPECT_EQ(nullptr, dialog_->OnCtlColorBtn(part, dc.Get()));
}

// Nothing of a text that was there before is left under the next one.
TEST_F(ReopenedBars, EraseADisabledEditOfAComboBox) {
    const HWND part = dropdown_->editObject->window;
    SetWindowTextW(part, L"WWWWWWWW");
    EnableWindow(dropdown_->window, FALSE);
    const auto redraw = [&] {
        RedrawWindow(dialog_->window, nullptr, nullptr,
                     RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    };
    redraw();
    SetWindowTextW(part, L"");
    redraw();
    const ClientDc dc(part);
    const PixelRect area = ClientArea(part);
    for (int y = 0; y < area.bottom; ++y) {
        for (int x = 0; x < area.right; ++x) {
            ASSERT_EQ(dropdown_->editObject->GetFillColor(), GetPixel(dc.Get(), x, y))
                << x << ", " << y;
        }
    }
}

} // namespace
