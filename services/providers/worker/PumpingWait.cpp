#include "services/providers/worker/PumpingWait.h"

#include <utility>

namespace providers {
namespace {

// The waits of this thread: one may begin in a message that another one dispatches.
thread_local PumpingWait* innermost = nullptr;

bool IsOfThisThread(HWND window) {
    return window && GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId();
}

bool IsCancel(UINT message, WPARAM wParam) {
    return message == WM_COMMAND && LOWORD(wParam) == IDCANCEL;
}

} // namespace

PumpingWait::PumpingWait(HANDLE ended, HWND owner)
    : CallWait(ended, owner), outer_(std::exchange(innermost, this)) {
    if (!IsOfThisThread(owner)) return;
    hook_.Reset(SetWindowsHookExW(WH_CALLWNDPROC, &Watch, nullptr, GetCurrentThreadId()));
}

PumpingWait::~PumpingWait() { innermost = outer_; }

// A button, the Esc key and the close box send their command; a command that is posted passes
// Dispatch instead.
LRESULT CALLBACK PumpingWait::Watch(int code, WPARAM wParam, LPARAM lParam) noexcept {
    const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (code == HC_ACTION && IsCancel(sent.message, sent.wParam)) {
        for (PumpingWait* wait = innermost; wait; wait = wait->outer_) {
            if (sent.hwnd && sent.hwnd == wait->Owner()) wait->isLeft_ = true;
        }
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

void PumpingWait::Dispatch(MSG& message) {
    if (quit_.Takes(message)) {
        isLeft_ = true;
        return;
    }
    if (message.hwnd == Owner() && Owner() && IsCancel(message.message, message.wParam)) {
        isLeft_ = true;
    }
    if (IsWindow(Owner()) && IsDialogMessageW(Owner(), &message)) return;
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

void PumpingWait::Sleep(const HANDLE (&events)[2], DWORD limit) {
    MsgWaitForMultipleObjectsEx(2, events, limit, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    if (isLeft_) return;
    HandlePendingMessages([this](MSG& message) {
        Dispatch(message);
        return !isLeft_;
    });
}

} // namespace providers
