// A control's colour that changes gradually while the mouse is on it.
#pragma once

#include <windows.h>

#include <cstdint>

#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

// A member of the control that it changes, in the dialogs' thread. Runs by a timer of the control's
// window: the control stops it at WM_NCDESTROY at the latest.
class ColorFade {
public:
    ColorFade() = default;
    ~ColorFade() { Stop(); }
    ColorFade(const ColorFade&) = delete;
    ColorFade& operator=(const ColorFade&) = delete;

    // `control` gets each colour by SetAnimatedColor, until that returns 0 or `to` is reached. It
    // is attached. A fade that is running already ends the process.
    void Start(ObCustomControl& control, COLORREF from, COLORREF to);
    // Nothing without a running fade. The control isn't called.
    void Stop();
    [[nodiscard]] bool IsRunning() const { return running_; }

private:
    static void CALLBACK OnTimer(HWND window, UINT message, UINT_PTR id, DWORD time);
    void Tick();

    ObCustomControl* owner_ = nullptr; // not owned
    COLORREF fromColor_ = 0;
    COLORREF toColor_ = 0;
    UINT_PTR timerId_ = 0;
    std::uint32_t step_ = 0;
    bool running_ = false;
};

} // namespace ObLibX
