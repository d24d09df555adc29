// What the tests of dialogs share: a process whose texts and dialogs are the test program's own,
// and a dialog that records its calls.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLibX/src/dialog/ControlMaker.h"
#include "ObLibX/src/dialog/DialogSettings.h"
#include "ObLibX/src/dialog/ObXDlg.h"
#include "tests/unit/ObLibX/dialog/DialogTestIds.h"

// The program's texts and dialogs are its own; no description, no flat controls.
class DialogTest : public testing::Test {
protected:
    void SetUp() override {
        ObLib::AppGlobals().SetModule(GetModuleHandleW(nullptr), L"", L"");
        ObLibX::ProcessDialogSettings() = ObLibX::DialogSettings();
        ObLibX::ProcessDialogSettings().isTried = true;
        ObLibX::SetControlMaker({});
    }
    void TearDown() override {
        ObLibX::SetControlMaker({});
        ObLibX::ProcessDialogSettings() = ObLibX::DialogSettings();
        ObLib::AppGlobals().Clear();
    }
    // The description of the program's resources counts.
    static void UseDescription() { ObLibX::ProcessDialogSettings().isTried = false; }
};

// A modeless dialog, opened by Open.
class RecordingDialog : public ObLibX::ObXDlg {
public:
    using ObXDlg::ObXDlg;
    explicit RecordingDialog(std::int32_t dialogTemplate)
        : ObXDlg(dialogTemplate, nullptr, 0, false) {}
    RecordingDialog& Open() {
        Create(nullptr);
        return *this;
    }
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
        return SendMessageW(window, message, wParam, lParam);
    }

    std::vector<std::wstring> calls;
};
