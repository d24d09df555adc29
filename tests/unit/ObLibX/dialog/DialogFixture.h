// What the tests of dialogs share: a process whose texts and dialogs are the test program's own,
// and a dialog that records its calls.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>

#include <new>
#include <string>
#include <utility>
#include <vector>

#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLibX/src/dialog/ControlMaker.h"
#include "ObLibX/src/dialog/DialogSettings.h"
#include "ObLibX/src/dialog/ObXDlg.h"
#include "tests/support/CrashWatch.h"
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

private:
    obtest::CrashWatch crashes_;
};

// The height that the text of a static window needs in its font and width.
inline int TextHeightOf(HWND window) {
    wchar_t text[100] = {};
    GetWindowTextW(window, text, 100);
    RECT needed{};
    GetClientRect(window, &needed);
    const HDC dc = GetDC(window);
    const auto font = reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0));
    const HGDIOBJ old = SelectObject(dc, font);
    const int height = DrawTextW(dc, text, -1, &needed, DT_CALCRECT | DT_WORDBREAK);
    SelectObject(dc, old);
    ReleaseDC(window, dc);
    return height;
}

// An object whose memory is gone as soon as it is deleted: whoever uses it then crashes.
template <class Class>
class DeletedAtOnce {
public:
    template <class... Arguments>
    explicit DeletedAtOnce(Arguments... arguments)
        : object_(new (VirtualAlloc(nullptr, sizeof(Class), MEM_RESERVE | MEM_COMMIT,
                                    PAGE_READWRITE)) Class(arguments...)) {}
    DeletedAtOnce(const DeletedAtOnce&) = delete;
    DeletedAtOnce& operator=(const DeletedAtOnce&) = delete;
    ~DeletedAtOnce() { Delete(); }
    void Delete() {
        Class* const object = std::exchange(object_, nullptr);
        if (object == nullptr) return;
        object->~Class();
        VirtualFree(object, 0, MEM_RELEASE);
    }
    bool IsDeleted() const { return object_ == nullptr; }
    Class* operator->() const { return object_; }

private:
    Class* object_;
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
