#include "ObLibX/src/controls/ScrollRepeat.h"

namespace ObLibX {

void ScrollRepeat::Start(HWND bar) {
    if (IsRunning(bar)) return;
    Stop(bar_);
    isPosted_ = false;
    bar_ = bar;
    countdown_ = kScrollRepeatDelay;
    SetTimer(bar, kScrollRepeatTimer, kScrollRepeatPeriod, nullptr);
}

void ScrollRepeat::Stop(HWND bar) {
    if (!IsRunning(bar)) return;
    KillTimer(bar, kScrollRepeatTimer);
    bar_ = nullptr;
}

// One press at a time, so that a slow parent isn't flooded.
void ScrollRepeat::OnTick(HWND bar) {
    if (!IsRunning(bar)) return;
    if (countdown_ > 0) --countdown_;
    if (countdown_ > 0 || isPosted_) return;
    POINT cursor{};
    GetCursorPos(&cursor);
    ScreenToClient(bar, &cursor);
    isPosted_ =
        PostMessageW(bar, WM_LBUTTONDOWN, kRepeatedPress, MAKELPARAM(cursor.x, cursor.y)) != FALSE;
}

bool ScrollRepeat::Accept(HWND bar, WPARAM keys) {
    if (keys != kRepeatedPress) return true;
    if (!IsRunning(bar)) return false;
    isPosted_ = false;
    return true;
}

ScrollRepeat& TheScrollRepeat() {
    static ScrollRepeat repeat;
    return repeat;
}

} // namespace ObLibX
