// What the tests of the settings share: the real registry of the prefix, an archive service that
// records, and dialogs that are operated from a second thread.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "OBCore/options/OBOptions.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/FakeModules.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/WindowKit.h"

namespace obtest {

using Lines = std::vector<std::wstring>;

// Not loaded; both encryption methods are allowed.
obcore::OBOptions PlainOptions();

// The visible dialog of this process that has the control `id`; null when there is none.
HWND FindDialogWith(int id);

// Whether the window's font is bold.
bool IsBold(HWND window);

// Whether Tab stops at it.
bool IsTabStop(HWND window);

// An open dialog, on the thread of a UI driver. A call returns after the dialog has dealt with it.
struct OpenDialog {
    HWND Item(int id) const { return GetDlgItem(window, id); }
    bool IsEnabled(int id) const { return IsWindowEnabled(Item(id)) != FALSE; }
    bool IsChecked(int id) const {
        return SendMessageW(Item(id), BM_GETCHECK, 0, 0) == BST_CHECKED;
    }
    std::wstring Text(int id) const { return ItemText(window, id); }
    // Those of `ids` that are checked, and those that are disabled.
    std::vector<int> Checked(const std::vector<int>& ids) const;
    std::vector<int> Disabled(const std::vector<int>& ids) const;
    // Those that have a tip for a control that policy took away.
    std::vector<int> Hinted(const std::vector<int>& ids) const;

    void Press(int id) const { SendMessageW(Item(id), BM_CLICK, 0, 0); }
    // Replaces a field's text as a paste does.
    void Type(int id, const std::wstring& text) const { ReplaceText(Item(id), text); }
    // Chooses a row of a drop-down list as the user does.
    void Select(int id, int row) const;
    // What a control sends its dialog.
    void Notify(int id, int code) const;
    void Cancel() const { PostMessageW(window, WM_COMMAND, IDCANCEL, 0); }
    // Ends a dialog that refuses nothing; one that refuses is still open when this returns.
    void Ok() const { SendMessageW(window, WM_COMMAND, IDOK, 0); }

    HWND window;
};

// Waits for the message box that `owner` shows, and closes it. For dialogs without an edit field,
// which a MessageBoxWatcher takes for message boxes.
SeenBox CloseBoxOf(HWND owner);

class SettingsFixture : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Runs `show`, which opens a dialog with the control `id`, and lets `use` operate it. A dialog
    // that is still open then is cancelled. Returns what `show` returns.
    static INT_PTR Operate(int id, const std::function<INT_PTR()>& show,
                           const std::function<void(const OpenDialog&)>& use);

    static void Answer(const std::wstring& call, const std::wstring& answer) {
        FakeModules::Answer(call, answer);
    }
    static obcore::OBOptions Loaded();
};

} // namespace obtest
