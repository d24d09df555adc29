// Repeats a press on a bar while the button is held on an arrow or beside the thumb.
#pragma once

#include <windows.h>

namespace ObLibX {

// The timer's id on the window of the bar.
inline constexpr UINT_PTR kScrollRepeatTimer = 10551;
inline constexpr UINT kScrollRepeatPeriod = 200; // milliseconds
// The first repeat comes with this tick.
inline constexpr int kScrollRepeatDelay = 4;

// One for the process, as only one bar repeats at a time: on the thread of the dialogs. The bar
// stops it at button up, when it loses the capture or the focus, and forgets it at WM_NCDESTROY.
class ScrollRepeat {
public:
    // Nothing while it runs for this bar already, so that the presses which it posts don't start
    // the delay again. One that runs for another bar ends.
    void Start(HWND bar);
    // Nothing while it runs for another bar, or not at all.
    void Stop(HWND bar);
    // Stops, and doesn't wait for a posted press any more: at WM_NCDESTROY.
    void Forget(HWND bar);
    [[nodiscard]] bool IsRunning(HWND bar) const { return bar_ == bar && bar != nullptr; }

    // For the bar's WM_TIMER of this id: posts a press at the cursor, once the delay is over.
    void OnTick(HWND bar);
    // For the bar's presses: whether this one was posted by OnTick.
    bool TakePosted(HWND bar);

private:
    HWND bar_ = nullptr; // whose button is held; null: nobody's
    int countdown_ = 0;
    HWND postedTo_ = nullptr; // which has a press in its queue
};

ScrollRepeat& TheScrollRepeat();

} // namespace ObLibX
