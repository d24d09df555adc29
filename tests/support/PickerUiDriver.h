// The UI driver of the real picker: finds the open dialog and operates its controls.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/support/WindowKit.h"

namespace obtest {

// One open picker, of this or of another process. Used from a thread that doesn't show the dialog.
// Every wait is for a condition and has a limit in milliseconds.
class OpenPicker {
public:
    // Waits for a visible file dialog of the process, or of any process for 0. Window() is null
    // when none came.
    static OpenPicker Await(DWORD processId = 0, DWORD limit = kUiLimit);

    explicit OpenPicker(HWND window) : window_(window) {}

    HWND Window() const { return window_; }
    bool IsOpen() const { return obtest::IsOpen(window_); }

    // The texts of the visible radio buttons and check boxes, without marks for
    // keys, from top to bottom and from left to right.
    std::vector<std::wstring> ChoiceTexts() const;

    // A button by its text, with or without marks for keys; null when there is none.
    HWND Button(const std::wstring& text) const;
    bool IsChecked(const std::wstring& text) const;
    bool IsEnabled(const std::wstring& text) const; // and takes clicks

    // A click on a radio button or check box. False when there is none or it doesn't take clicks.
    bool Click(const std::wstring& text) const;

    // What is typed for the file name: one full path, or several names in double quotes.
    bool TypeNames(const std::wstring& names) const;
    static std::wstring QuotedNames(const std::vector<std::wstring>& names);

    // Selects these rows of the file list, and no others.
    bool SelectInList(const std::vector<int>& rows) const;

    // Rows of the file list as it is now; -1 while there is none.
    int RowCount() const;

    void PressOk() const { PressCommand(window_, IDOK); }
    void PressCancel() const { PressCommand(window_, IDCANCEL); }

    bool WaitUntilClosed(DWORD limit = kUiLimit) const {
        return obtest::WaitUntilClosed(window_, limit);
    }

private:
    HWND window_;
};

// Runs `use` on a thread of its own while the test's thread shows the dialog. If `use` leaves the
// dialog open, the driver cancels it, so that no test waits for ever.
class PickerUiDriver : public WindowDriver {
public:
    explicit PickerUiDriver(std::function<void(OpenPicker&)> use, DWORD processId = 0);

private:
    static constexpr DWORD kGrace = 5000; // milliseconds
};

} // namespace obtest
