// The UI driver of the real picker: finds the open dialog and operates its controls.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace obtest {

// One open picker, of this or of another process. Used from a thread that doesn't show the dialog.
// Every wait is for a condition and has a limit in milliseconds.
class OpenPicker {
public:
    static constexpr DWORD kLimit = 20000;

    // Waits for a visible file dialog of the process, or of any process for 0. Window() is null
    // when none came.
    static OpenPicker Await(DWORD processId = 0, DWORD limit = kLimit);

    explicit OpenPicker(HWND window) : window_(window) {}

    HWND Window() const { return window_; }
    bool IsOpen() const;

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

    void PressOk() const;
    void PressCancel() const;

    bool WaitUntilClosed(DWORD limit = kLimit) const;

    // Waits until `condition` is true; false when the limit is over.
    static bool WaitFor(const std::function<bool()>& condition, DWORD limit = kLimit);

private:
    HWND window_;
};

// Runs `use` on a thread of its own while the test's thread shows the dialog. If `use` leaves the
// dialog open, the driver cancels it, so that no test waits for ever.
class PickerUiDriver {
public:
    explicit PickerUiDriver(std::function<void(OpenPicker&)> use, DWORD processId = 0);
    ~PickerUiDriver();
    PickerUiDriver(const PickerUiDriver&) = delete;
    PickerUiDriver& operator=(const PickerUiDriver&) = delete;

    // Waits for the end of `use`; false when no dialog came or the driver had to cancel it.
    bool Done();

private:
    void Run();

    std::function<void(OpenPicker&)> use_;
    DWORD processId_;
    bool good_ = false;
    std::thread thread_;
};

} // namespace obtest
