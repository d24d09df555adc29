// What the fault tests of the dialog toolkit share: a dialog with a control of each class, whose
// controls are those of the product, and a watch on what it uses.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <typeindex>
#include <vector>

#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLibX/src/controls/FlatControls.h"
#include "ObLibX/src/dialog/ControlMaker.h"
#include "ObLibX/src/dialog/DialogSettings.h"
#include "ObLibX/src/dialog/ObXFlatDlg.h"
#include "tests/faults/toolkit/ToolkitIds.h"
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
    // `onCommand`, where there is one, runs at each notification of a control.
    bool OnCommandId(int id, int code, HWND) override {
        if (onCommand) onCommand(id, code);
        return false;
    }
    std::function<void(int id, int code)> onCommand;
};

// Dispatches what is posted, which ends.
inline void PumpPosted() {
    MSG message;
    for (int left = 1000; left > 0 && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); --left) {
        DispatchMessageW(&message);
    }
}

class ToolkitSuite : public testing::Test {
protected:
    void SetUp() override {
        ObLib::AppGlobals().SetModule(GetModuleHandleW(nullptr), L"", L"");
        ObLibX::UseFlatControls();
        EveryControlDialog().Open(); // what is made once is made
        PumpPosted();
        ASSERT_TRUE(timers_.Ok());
    }
    void TearDown() override {
        PumpPosted();
        EXPECT_EQ(0u, timers_.Running()) << "a timer wasn't ended";
        ObLibX::SetControlMaker({});
        ObLib::AppGlobals().Clear();
    }
    // One control of each class that has an object, by id.
    static std::vector<int> OneOfEachClass() {
        EveryControlDialog dialog;
        dialog.Open();
        std::set<std::type_index> seen;
        std::vector<int> ids;
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
};

} // namespace obtest
