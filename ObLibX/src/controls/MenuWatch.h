// Whether a menu is opened for a window meanwhile.
#pragma once

#include <windows.h>

namespace ObLibX {

// For a scope, on the thread of the window, which may go meanwhile. Sees the menus of which the
// system informs the window. Throws std::bad_alloc.
class MenuWatch {
public:
    explicit MenuWatch(HWND window);
    ~MenuWatch();
    MenuWatch(const MenuWatch&) = delete;
    MenuWatch& operator=(const MenuWatch&) = delete;

    [[nodiscard]] bool HasSeenMenu() const { return hasSeenMenu_; }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                      UINT_PTR id, DWORD_PTR object);

    HWND window_; // null once it has gone
    bool hasSeenMenu_ = false;
};

} // namespace ObLibX
