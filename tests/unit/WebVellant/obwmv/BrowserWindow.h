// A browser's main window with a page window in it, on the thread of the test.
#pragma once

#include <windows.h>

#include <functional>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obtest {

inline constexpr RECT kBrowserPlace = {40, 30, 640, 430};

class BrowserWindow {
public:
    BrowserWindow();

    HWND Root() const { return root_.Get(); }
    HWND Page() const { return page_.Get(); } // a child of the root window
    bool Enabled() const { return IsWindowEnabled(Root()) != FALSE; }

    // Runs `tick` on this thread every few milliseconds for as long as it pumps messages.
    void OnTick(std::function<void()> tick);

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM first, LPARAM second);

    std::function<void()> tick_;
    ObLib::UniqueWindow root_;
    ObLib::UniqueWindow page_;
};

// Takes a WM_QUIT out of this thread's queue, if it comes next; -1 when there is none.
int QuitValueInQueue();

} // namespace obtest
