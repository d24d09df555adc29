// The UI driver of the password prompt: a second thread that types and presses buttons.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "tests/support/WindowKit.h"

namespace obtest {

// An open prompt, for the driver's thread. Its calls return when the prompt has handled them.
class PromptOnScreen {
public:
    explicit PromptOnScreen(HWND dialog) : dialog_(dialog) {}

    HWND Window() const { return dialog_; }
    HWND Item(int id) const { return GetDlgItem(dialog_, id); }
    void Type(int field, const std::wstring& text) const;
    std::wstring Text(int id) const { return ItemText(dialog_, id); }
    bool OkIsEnabled() const { return IsWindowEnabled(Item(IDOK)) != FALSE; }
    void Press(int id) const { SendMessageW(dialog_, WM_COMMAND, id, 0); }

private:
    HWND dialog_;
};

// Runs `act` on a second thread once this process shows a prompt; joined at the end. If `act`
// leaves the prompt open, the driver cancels it, so that no test hangs.
class PromptDriver : public WindowDriver {
public:
    explicit PromptDriver(std::function<void(const PromptOnScreen&)> act);
};

} // namespace obtest
