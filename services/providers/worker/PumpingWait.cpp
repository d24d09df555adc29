#include "services/providers/worker/PumpingWait.h"

#include <utility>

namespace providers {
namespace {

// A window that posts messages to itself without end must not keep the wait from noticing its
// events.
constexpr int kMostMessages = 64;

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

PumpingWait::~PumpingWait() {
    innermost = outer_;
    if (quits_) PostQuitMessage(quitCode_);
}

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
    if (message.message == WM_QUIT) {
        quits_ = true;
        isLeft_ = true;
        quitCode_ = static_cast<int>(message.wParam);
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
    MSG message;
    for (int handled = 0; handled < kMostMessages && !isLeft_; ++handled) {
        if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) return;
        Dispatch(message);
    }
}

} // namespace providers
