#include "ObLibX/src/controls/ScrollRepeat.h"

namespace ObLibX {

void ScrollRepeat::Start(HWND bar) {
    if (IsRunning(bar)) return;
    Stop(bar_);
    bar_ = bar;
    countdown_ = kScrollRepeatDelay;
    SetTimer(bar, kScrollRepeatTimer, kScrollRepeatPeriod, nullptr);
}

void ScrollRepeat::Stop(HWND bar) {
    if (!IsRunning(bar)) return;
    KillTimer(bar, kScrollRepeatTimer);
    bar_ = nullptr;
}

void ScrollRepeat::Forget(HWND bar) {
    Stop(bar);
    if (postedTo_ == bar) postedTo_ = nullptr;
}

// One press at a time, so that a slow parent isn't flooded.
void ScrollRepeat::OnTick(HWND bar) {
    if (!IsRunning(bar)) return;
    if (countdown_ > 0) --countdown_;
    if (countdown_ > 0 || postedTo_ == bar) return;
    POINT cursor{};
    GetCursorPos(&cursor);
    ScreenToClient(bar, &cursor);
    if (PostMessageW(bar, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(cursor.x, cursor.y))) {
        postedTo_ = bar;
    }
}

bool ScrollRepeat::TakePosted(HWND bar) {
    if (postedTo_ != bar || bar == nullptr) return false;
    postedTo_ = nullptr;
    return true;
}

ScrollRepeat& TheScrollRepeat() {
    static ScrollRepeat repeat;
    return repeat;
}

} // namespace ObLibX
