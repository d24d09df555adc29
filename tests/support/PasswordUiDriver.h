// The UI driver of the password prompt of any process: finds it by its fields and types into it.
#pragma once

#include <windows.h>

#include <string>

#include "tests/support/WindowKit.h"

namespace obtest {

// An open password prompt: a dialog with two fields that hide what is typed. Used from a thread
// that doesn't show it.
class OpenPasswordPrompt {
public:
    // Waits for a visible prompt of the process, or of any process for 0. Window() is null when
    // none came.
    static OpenPasswordPrompt Await(DWORD processId = 0, DWORD limit = kUiLimit);

    // The one that is open now; its Window() may be null.
    static OpenPasswordPrompt Find(DWORD processId = 0);

    explicit OpenPasswordPrompt(HWND window) : window_(window) {}

    HWND Window() const { return window_; }

    // Types into both fields, character by character. False when there aren't two fields.
    bool Type(const std::wstring& password, const std::wstring& repetition) const;

    // Waits until OK takes a press, then presses it. False after the limit.
    bool PressOk(DWORD limit = kUiLimit) const;
    void PressCancel() const { PressCommand(window_, IDCANCEL); }

    bool WaitUntilClosed(DWORD limit = kUiLimit) const {
        return obtest::WaitUntilClosed(window_, limit);
    }

private:
    HWND window_;
};

} // namespace obtest
