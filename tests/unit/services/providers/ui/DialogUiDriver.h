// Operates a dialog of this process from a second thread.
#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "tests/support/WindowKit.h"

namespace obtest {

// Waits for a visible dialog that has a control with the id, and calls `use` with it once. A dialog
// that stays open after that is cancelled, so that no test waits for ever.
class DialogUiDriver {
public:
    DialogUiDriver(int control, std::function<void(HWND)> use)
        : control_(control), use_(std::move(use)), thread_([this] { Run(); }) {}
    ~DialogUiDriver() {
        stop_ = true;
        thread_.join();
    }
    DialogUiDriver(const DialogUiDriver&) = delete;
    DialogUiDriver& operator=(const DialogUiDriver&) = delete;

    bool WasUsed() const { return used_; }

    static void Press(HWND dialog, int button) {
        SendMessageW(GetDlgItem(dialog, button), BM_CLICK, 0, 0);
    }

private:
    void Run() {
        const auto hasControl = [this](HWND window) {
            return GetDlgItem(window, control_) != nullptr;
        };
        while (!stop_ && !found_) {
            found_ = FindTopWindow(hasControl, GetCurrentProcessId());
            Sleep(5);
        }
        if (!found_) return;
        used_ = true;
        use_(found_);
        for (int waited = 0; waited < kLimit && !stop_ && IsWindow(found_); waited += 5) Sleep(5);
        if (IsWindow(found_)) PostMessageW(found_, WM_COMMAND, IDCANCEL, 0);
    }

    static constexpr int kLimit = 20000; // milliseconds

    int control_;
    std::function<void(HWND)> use_;
    std::atomic<bool> stop_ = false;
    std::atomic<bool> used_ = false;
    HWND found_ = nullptr;
    std::thread thread_;
};

} // namespace obtest
