// The messages of a thread that waits for something else, and the dialogs that another one shows.
#pragma once

#include <windows.h>

#include <optional>

namespace providers {

// A quit message that came while a thread was busy: posted again when this object goes.
class KeptQuit {
public:
    KeptQuit() = default;
    ~KeptQuit() {
        if (code_) PostQuitMessage(*code_);
    }
    KeptQuit(const KeptQuit&) = delete;
    KeptQuit& operator=(const KeptQuit&) = delete;

    // True for a quit message, which is kept.
    bool Takes(const MSG& message) noexcept {
        if (message.message != WM_QUIT) return false;
        code_ = static_cast<int>(message.wParam);
        return true;
    }
    bool HasCome() const noexcept { return code_.has_value(); }

private:
    std::optional<int> code_;
};

// Takes the calling thread's messages out of its queue and calls `handle` with each, until there is
// none or `handle` returns false; not so many that a window that posts messages to itself without
// end hides what the thread waits for.
template <class Handle>
void HandlePendingMessages(Handle handle) {
    constexpr int kMostAtOnce = 64;
    MSG message;
    for (int count = 0; count < kMostAtOnce; ++count) {
        if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) || !handle(message)) return;
    }
}

// Cancels the dialog that the thread shows: one with `owner` among its owners, any for null. A
// dialog whose own dialog is open is disabled, and gets its turn after that one. On any thread.
void CancelDialogOf(DWORD thread, HWND owner) noexcept;

} // namespace providers
