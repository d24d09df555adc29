// Plays the person in front of the password prompt: a second thread that types and presses.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <thread>

namespace obtest {

// The prompt as its driver sees it. Every call waits for what it needs, at most ten seconds.
class PromptOnScreen {
public:
    explicit PromptOnScreen(HWND dialog) : dialog_(dialog) {}

    HWND Window() const { return dialog_; }
    HWND Item(int id) const { return GetDlgItem(dialog_, id); }
    void Type(int field, const std::wstring& text) const;
    std::wstring Text(int id) const;
    bool OkIsEnabled() const { return IsWindowEnabled(Item(IDOK)) != FALSE; }
    void Press(int id) const { SendMessageW(dialog_, WM_COMMAND, id, 0); }

private:
    HWND dialog_;
};

// Runs `person` on a second thread once this process shows a prompt; joined at the end. If `person`
// leaves the prompt open, it is cancelled, so that no test hangs.
class PromptDriver {
public:
    explicit PromptDriver(std::function<void(const PromptOnScreen&)> act);
    ~PromptDriver();
    PromptDriver(const PromptDriver&) = delete;
    PromptDriver& operator=(const PromptDriver&) = delete;

    bool SawPrompt() const { return saw_; }

private:
    std::function<void(const PromptOnScreen&)> act_;
    bool saw_ = false; // read after the prompt has ended
    std::thread thread_;
};

} // namespace obtest
