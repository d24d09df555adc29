// Windows that outlive their objects go on as stock ones: each object is deleted and overwritten,
// and its window gets messages and goes afterwards.
#include <commctrl.h>

#include "ObLibX/src/controls/ObCustCombo.h"
#include "ObLibX/src/controls/ObCustProgress.h"
#include "ObLibX/src/controls/ObCustSlider.h"
#include "ObLibX/src/controls/ObCustSpin.h"
#include "ObLibX/src/controls/ScrollRepeat.h"
#include "tests/unit/ObLibX/controls/BarFixture.h"

namespace {

using namespace ObLibX;
using namespace obtest;

class OutlivedBars : public BarTest {
protected:
    void SetUp() override {
        BarTest::SetUp();
        INITCOMMONCONTROLSEX classes{sizeof classes, ICC_PROGRESS_CLASS | ICC_UPDOWN_CLASS};
        InitCommonControlsEx(&classes);
    }
    // What reaches the procedures of each class.
    static void Use(HWND window) {
        const PixelRect area = ClientArea(window);
        RedrawWindow(window, nullptr, nullptr,
                     RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_UPDATENOW);
        Move(window, area.right - 3, area.bottom / 2);
        SendMessageW(window, WM_MOUSELEAVE, 0, 0);
        SendMessageW(window, WM_TIMER, kScrollRepeatTimer, 0);
        SendMessageW(window, WM_ENABLE, FALSE, 0);
        SendMessageW(window, WM_ENABLE, TRUE, 0);
        SendMessageW(window, WM_CAPTURECHANGED, 0, 0);
        SetWindowPos(window, nullptr, 30, 30, 90, 40, SWP_NOZORDER);
    }
    template <class Object, class... Arguments>
    void DeleteAndUse(HWND window, Arguments... arguments) {
        Deletable<Object> object(1001, arguments...);
        object->Attach(window);
        Use(window);
        object.Delete();
        Use(window);
        DestroyWindow(window);
    }
};

TEST_F(OutlivedBars, AreBarsAndSliders) {
    for (const auto orientation : {ScrollOrientation::Horizontal, ScrollOrientation::Vertical}) {
        DeleteAndUse<ObFlatScrollbar>(Child(L"Static", 0, {10, 10, 40, 200}), orientation);
        DeleteAndUse<ObFlatSlider>(Child(L"Static", 0, {10, 10, 40, 200}), orientation);
    }
}

TEST_F(OutlivedBars, AreBarsThatArePressed) {
    const HWND window = Child(L"Static", 0, {10, 10, 40, 200});
    {
        ObFlatScrollbar bar(1001, ScrollOrientation::Vertical);
        bar.Attach(window);
        Press(window, 3, 3);
        EXPECT_TRUE(TheScrollRepeat().IsRunning(window));
        EXPECT_EQ(window, GetCapture());
    }
    EXPECT_FALSE(TheScrollRepeat().IsRunning(window));
    EXPECT_EQ(nullptr, GetCapture());
    EXPECT_EQ(HTTRANSPARENT, SendMessageW(window, WM_NCHITTEST, 0, MAKELPARAM(15, 15)))
        << "a label again";
}

TEST_F(OutlivedBars, AreComboBoxes) {
    const auto make = [&](DWORD kind) {
        return Child(L"ComboBox", kind | CBS_HASSTRINGS | CBS_AUTOHSCROLL | WS_TABSTOP,
                     {20, 20, 180, 220});
    };
    const auto useList = [](HWND combo) {
        COMBOBOXINFO info{};
        info.cbSize = sizeof info;
        GetComboBoxInfo(combo, &info);
        SendMessageW(info.hwndList, WM_NCPAINT, 1, 0);
        SetWindowPos(info.hwndList, nullptr, 9, 9, 50, 50, SWP_NOZORDER | SWP_NOACTIVATE);
        if (info.hwndItem != nullptr) Use(info.hwndItem);
    };
    const HWND simple = make(CBS_SIMPLE);
    const HWND dropdown = make(CBS_DROPDOWN);
    const HWND list = make(CBS_DROPDOWNLIST);
    Deletable<ObFlatComboBoxSimple> first(1001);
    Deletable<ObFlatComboBoxDropdown> second(1002);
    Deletable<ObFlatComboBoxDropdownList> third(1003);
    first->Attach(simple);
    second->Attach(dropdown);
    third->Attach(list);
    first.Delete();
    second.Delete();
    third.Delete();
    for (const HWND combo : {simple, dropdown, list}) {
        useList(combo);
        SendMessageW(combo, CB_SHOWDROPDOWN, TRUE, 0);
        SendMessageW(combo, CB_SHOWDROPDOWN, FALSE, 0);
        SetFocus(combo);
        SetFocus(parent_.Get());
        Use(combo);
        DestroyWindow(combo);
    }
}

TEST_F(OutlivedBars, AreProgressBars) {
    const HWND window = Child(PROGRESS_CLASSW, PBS_MARQUEE, {10, 10, 270, 30});
    Deletable<ObFlatProgressBar> bar(1001);
    bar->Attach(window);
    SendMessageW(window, PBM_SETMARQUEE, TRUE, 0);
    ASSERT_TRUE(bar->isMarquee);
    bar.Delete();
    Use(window);
    SendMessageW(window, PBM_SETRANGE32, 0, 77);
    EXPECT_EQ(77, SendMessageW(window, PBM_GETRANGE, FALSE, 0));
    DestroyWindow(window);
}

// The spin or its edit first.
TEST_F(OutlivedBars, AreSpinsAndTheirEdits) {
    for (const bool isSpinFirst : {true, false}) {
        const HWND editWindow = Child(L"Edit", ES_NUMBER, {100, 50, 200, 80});
        const HWND window = Child(UPDOWN_CLASSW, UDS_SETBUDDYINT, {200, 50, 218, 80});
        SendMessageW(window, UDM_SETBUDDY, reinterpret_cast<WPARAM>(editWindow), 0);
        Deletable<ObFlatEdit> edit(1001);
        Deletable<ObFlatSpinCtrl> spin(1002);
        edit->Attach(editWindow);
        spin->Attach(window);
        SendMessageW(window, WM_NULL, 0, 0);
        ASSERT_EQ(&*edit, spin->edit);
        if (isSpinFirst) {
            spin.Delete();
            EXPECT_EQ(nullptr, edit->spinControl);
        } else {
            edit.Delete();
            EXPECT_EQ(nullptr, spin->edit);
        }
        Use(window);
        SetWindowPos(editWindow, nullptr, 150, 120, 160, 40, SWP_NOZORDER);
        spin.Delete();
        edit.Delete();
        Use(window);
        DestroyWindow(window);
        DestroyWindow(editWindow);
    }
}

} // namespace
