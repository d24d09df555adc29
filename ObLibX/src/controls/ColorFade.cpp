#include "ObLibX/src/controls/ColorFade.h"

#include <map>

#include "ObLib/Src/ObFatal.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLibX/src/controls/FadedColor.h"

namespace ObLibX {
namespace {

constexpr wchar_t kModule[] = L"ObLibX\\src\\ColorFade.cpp";

// By timer. All fades belong to the thread of the dialogs.
std::map<UINT_PTR, ColorFade*>& RunningFades() {
    static std::map<UINT_PTR, ColorFade*> fades;
    return fades;
}

ColorFade* FadeOf(UINT_PTR timer) {
    const auto found = RunningFades().find(timer);
    return found == RunningFades().end() ? nullptr : found->second;
}

UINT_PTR NextTimerId() {
    static UINT_PTR last = 0;
    return ++last;
}

} // namespace

void ColorFade::Start(ObCustomControl& control, COLORREF from, COLORREF to) {
    ObAssert(!running_);
    timerId_ = NextTimerId();
    RunningFades().emplace(timerId_, this);
    owner_ = &control;
    fromColor_ = from;
    toColor_ = to;
    step_ = 0;
    running_ = true;
    SetTimer(control.window, timerId_, kFadeStepMilliseconds, &ColorFade::OnTimer);
}

// Without a window the system would take the id for one of the thread's own timers.
void ColorFade::Stop() {
    if (!running_) return;
    running_ = false;
    if (owner_->window != nullptr) KillTimer(owner_->window, timerId_);
    RunningFades().erase(timerId_);
}

void CALLBACK ColorFade::OnTimer(HWND, UINT, UINT_PTR id, DWORD) {
    static_cast<void>(ObLib::RanGuarded([&] {
        if (ColorFade* const fade = FadeOf(id)) fade->Tick();
    }));
}

// The control may stop the fade, or be destroyed with it, while it takes a colour: the fade is
// looked up again afterwards.
void ColorFade::Tick() {
    if (++step_ >= kFadeSteps) {
        Stop();
        owner_->SetAnimatedColor(toColor_);
        return;
    }
    const UINT_PTR timer = timerId_;
    if (owner_->SetAnimatedColor(FadedColor(fromColor_, toColor_, step_)) != 0) return;
    if (ColorFade* const fade = FadeOf(timer)) fade->Stop();
}

} // namespace ObLibX
