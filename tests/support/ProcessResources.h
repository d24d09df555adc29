// What this process uses at a moment, compared with what it used before: a leak shows here.
#pragma once

#include <windows.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/ImportPatch.h"

namespace obtest {

// Handles of kernel objects. Where the system counts none, as Wine does, those of this process are
// counted in the system's list.
DWORD CountHandles();

// Pens, bitmaps, device contexts and so on of this process. Where the system counts none, as Wine
// does, they are counted in the table of GDI handles, which the process sees.
DWORD CountGdiObjects();

// Windows of this process, also hidden and message-only ones.
DWORD CountWindows();

// Windows, menus and so on of this process. Where the system counts none, as Wine does, its windows
// and menus are counted one by one; cursors, icons and hooks are not.
DWORD CountUserObjects();

struct ProcessResources {
    DWORD handles = 0;
    DWORD gdiObjects = 0;
    DWORD userObjects = 0;
    DWORD windows = 0;
    std::vector<std::wstring> files; // all below the temporary folder
    SIZE_T committed = 0;            // bytes

    static ProcessResources Now();
};

// Expects that now there is nothing more than `before`, and of memory at most 4 MiB, which is less
// than one block for every tenth of a thousand requests.
void ExpectNoMoreThan(const ProcessResources& before);

// Watches the timers of windows that the test program starts and ends, as no call counts them. One
// at a time; the test's own thread only.
class TimerWatch {
public:
    TimerWatch();
    ~TimerWatch();
    TimerWatch(const TimerWatch&) = delete;
    TimerWatch& operator=(const TimerWatch&) = delete;

    // False when the test program sets or ends no timer.
    [[nodiscard]] bool Ok() const { return set_.Ok() && end_.Ok(); }
    // Those that were started and not ended, of windows that are gone too.
    [[nodiscard]] std::size_t Running() const { return running_.size(); }
    [[nodiscard]] std::size_t Started() const { return started_; }

private:
    static UINT_PTR WINAPI Set(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC call);
    static BOOL WINAPI End(HWND window, UINT_PTR id);

    std::set<std::pair<HWND, UINT_PTR>> running_;
    std::size_t started_ = 0;
    ImportPatch<decltype(&SetTimer)> set_;
    ImportPatch<decltype(&KillTimer)> end_;
};

} // namespace obtest
