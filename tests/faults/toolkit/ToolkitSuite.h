// What the fault tests of the dialog toolkit share: a dialog with a control of each class, whose
// controls are those of the product, and a watch on what it uses.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>

#include <oleacc.h>

#include <set>
#include <typeindex>
#include <vector>

#include "ObLib/Src/Win32/ComResources.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLibX/src/controls/FlatControls.h"
#include "ObLibX/src/controls/ObHyperlink.h"
#include "ObLibX/src/controls/ScrollBarHost.h"
#include "ObLibX/src/dialog/ControlMaker.h"
#include "ObLibX/src/dialog/DialogSettings.h"
#include "ObLibX/src/dialog/ObXFlatDlg.h"
#include "tests/faults/toolkit/ToolkitIds.h"
#include "tests/support/CrashWatch.h"
#include "tests/support/ProcessResources.h"

namespace obtest {

class EveryControlDialog : public ObLibX::ObXFlatDlg {
public:
    EveryControlDialog() : ObXFlatDlg(OB_EVERY_CONTROL, nullptr, 0, false) {}
    // Opens it and has it painted.
    EveryControlDialog& Open() {
        Create(nullptr);
        ShowWindow(window, SW_SHOW);
        RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        return *this;
    }
    // Besides those of the template it has a list whose bars are hosted.
    bool OnInitDialog() override {
        ObXFlatDlg::OnInitDialog();
        link_.Attach(window);
        hosted =
            CreateWindowExW(0, L"ListBox", L"",
                            WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_HSCROLL | LBS_NOINTEGRALHEIGHT,
                            430, 10, 100, 90, window, nullptr, nullptr, nullptr);
        for (int row = 0; row < 60; ++row) {
            SendMessageW(hosted, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"A row"));
        }
        SendMessageW(hosted, LB_SETHORIZONTALEXTENT, 300, 0);
        bars.Attach(hosted);
        return false;
    }
    const ObLibX::ObHyperlinkCtrl& Link() const { return link_; }
    HWND hosted = nullptr;
    ObLibX::ScrollBarHost bars;

private:
    ObLibX::ObCmdLinkCtrl link_{OB_LINK, this};
};

// Dispatches what is posted, which ends.
inline void PumpPosted() {
    MSG message;
    for (int left = 1000; left > 0 && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); --left) {
        DispatchMessageW(&message);
    }
}

// As a screen reader does: a result of WM_GETOBJECT that nobody takes would keep its object.
inline void TakeObjectOf(HWND window) {
    void* object = nullptr;
    AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                               &object);
    const ObLib::ComPtr<IAccessible> taken(static_cast<IAccessible*>(object));
}

class ToolkitSuite : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(CanMakeWindows()) << "the process for the desktop wasn't started";
        ObLib::AppGlobals().SetModule(GetModuleHandleW(nullptr), L"", L"");
        ObLibX::UseFlatControls();
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        MakeWhatIsMadeOnce();
        PumpPosted();
        ASSERT_TRUE(timers_.Ok());
    }
    void TearDown() override {
        PumpPosted();
        EXPECT_EQ(0u, timers_.Running()) << "a timer wasn't ended";
        ObLibX::SetControlMaker({});
        ObLib::AppGlobals().Clear();
        CoUninitialize();
    }
    // The first window of a prefix starts a process, which fails now and then (docs/testing.md).
    static bool CanMakeWindows() {
        const ObLib::UniqueWindow window(CreateWindowExW(0, L"static", L"", WS_POPUP, 0, 0, 1, 1,
                                                         nullptr, nullptr, nullptr, nullptr));
        return static_cast<bool>(window);
    }
    // Pictures, fonts, the brushes that classes of controls keep for the process, and what COM
    // keeps for the thread.
    static void MakeWhatIsMadeOnce() {
        EveryControlDialog dialog;
        dialog.Open();
        const HDC dc = GetDC(dialog.window);
        for (const auto& [id, control] : dialog.Controls()) {
            control->OnCtlColor(dc, control->window);
            TakeObjectOf(control->window);
        }
        ReleaseDC(dialog.window, dc);
    }
    // One control of each class that has an object, by id, and the link.
    static std::vector<int> OneOfEachClass() {
        EveryControlDialog dialog;
        dialog.Open();
        std::set<std::type_index> seen;
        std::vector<int> ids{OB_LINK};
        for (const auto& [id, control] : dialog.Controls()) {
            const ObLibX::ObCustomControl& object = *control;
            if (seen.insert(typeid(object)).second) ids.push_back(id);
        }
        return ids;
    }
    // The ids of all controls that have an object.
    static std::vector<int> DressedIds() {
        EveryControlDialog dialog;
        dialog.Open();
        std::vector<int> ids;
        for (const auto& [id, control] : dialog.Controls()) ids.push_back(id);
        return ids;
    }

    const TimerWatch timers_;

private:
    CrashWatch crashes_;
};

} // namespace obtest
