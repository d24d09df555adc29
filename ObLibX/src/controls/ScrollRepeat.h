// Repeats a press on a bar while the button is held on an arrow or beside the thumb.
#pragma once

#include <windows.h>

namespace ObLibX {

// The timer's id on the window of the bar.
inline constexpr UINT_PTR kScrollRepeatTimer = 10551;
inline constexpr UINT kScrollRepeatPeriod = 200; // milliseconds
// The first repeat comes with this tick.
inline constexpr int kScrollRepeatDelay = 4;
// The wParam of a press that the repeat posts: the mark in its high word is in no press of a mouse.
inline constexpr WPARAM kRepeatedPress = MAKEWPARAM(MK_LBUTTON, 1);

// One for the process, as only one bar repeats at a time: on the thread of the dialogs. The bar
// stops it at button up, when it loses the capture or the focus, and at WM_NCDESTROY.
class ScrollRepeat {
public:
    // Nothing while it runs for this bar already, so that the presses which it posts don't start
    // the delay again. One that runs for another bar ends.
    void Start(HWND bar);
    // Nothing while it runs for another bar, or not at all.
    void Stop(HWND bar);
    [[nodiscard]] bool IsRunning(HWND bar) const { return bar_ == bar && bar != nullptr; }

    // For the bar's WM_TIMER of this id: posts a press at the cursor, once the delay is over.
    void OnTick(HWND bar);
    // For the bar's presses, by their wParam. False: this one was posted before the repeat ended,
    // and is late.
    bool Accept(HWND bar, WPARAM keys);

private:
    HWND bar_ = nullptr; // whose button is held; null: nobody's
    int countdown_ = 0;
    bool isPosted_ = false; // a press is in the bar's queue, unless somebody else took it
};

ScrollRepeat& TheScrollRepeat();

} // namespace ObLibX
