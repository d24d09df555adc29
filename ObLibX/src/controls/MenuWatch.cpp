#include "ObLibX/src/controls/MenuWatch.h"

#include "ObLibX/src/dialog/WindowSubclass.h"

namespace ObLibX {

MenuWatch::MenuWatch(HWND window) : window_(window) {
    AddSubclass(window, &MenuWatch::Procedure, this);
}

MenuWatch::~MenuWatch() { RemoveSubclass(window_, &MenuWatch::Procedure, this); }

LRESULT CALLBACK MenuWatch::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                      UINT_PTR, DWORD_PTR object) {
    auto* const watch = reinterpret_cast<MenuWatch*>(object);
    if (message == WM_ENTERMENULOOP || message == WM_INITMENUPOPUP) watch->hasSeenMenu_ = true;
    if (message == WM_NCDESTROY) {
        RemoveSubclass(window, &MenuWatch::Procedure, watch);
        watch->window_ = nullptr;
    }
    return CallNextSubclass(window, message, wParam, lParam);
}

} // namespace ObLibX
