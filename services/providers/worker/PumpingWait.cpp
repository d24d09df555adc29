#include "services/providers/worker/PumpingWait.h"

namespace providers {
namespace {

// Marks the owner that is watched, with the object that watches it.
constexpr wchar_t kWatcher[] = L"OmbrixVellantPumpingWait";

bool IsOfThisThread(HWND window) {
    return window && GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId();
}

bool IsCancel(UINT message, WPARAM wParam) {
    return message == WM_COMMAND && LOWORD(wParam) == IDCANCEL;
}

} // namespace

PumpingWait::PumpingWait(HANDLE ended, HWND owner) : CallWait(ended, owner) {
    if (!IsOfThisThread(owner) || !SetPropW(owner, kWatcher, this)) return;
    hook_.Reset(SetWindowsHookExW(WH_CALLWNDPROC, &Watch, nullptr, GetCurrentThreadId()));
}

PumpingWait::~PumpingWait() {
    if (IsWindow(Owner())) RemovePropW(Owner(), kWatcher);
    if (quits_) PostQuitMessage(quitCode_);
}

// A button, the Esc key and the close box send their command; a command that is posted passes
// Dispatch instead.
LRESULT CALLBACK PumpingWait::Watch(int code, WPARAM wParam, LPARAM lParam) noexcept {
    const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (code == HC_ACTION && IsCancel(sent.message, sent.wParam)) {
        auto* const self = static_cast<PumpingWait*>(GetPropW(sent.hwnd, kWatcher));
        if (self) self->isLeft_ = true;
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
    for (MSG message; !isLeft_ && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) {
        Dispatch(message);
    }
}

} // namespace providers
