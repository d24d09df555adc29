// The owner window of the host's dialog: prepared for one run, and restored at the run's end.
//
// Both objects are on the stack of the calling browser thread and work on the same owner field.
#pragma once

#include <windows.h>

#include <cstdint>

namespace obwmv {

// Puts the browser's main window, found by its class names on the whole desktop, in the owner
// field; the destructor writes the old value back, whatever the field contains by then.
class BrowserWindowFinder {
public:
    // Tries the `count` class names in order; zero or less searches nothing.
    BrowserWindowFinder(HWND* owner, const wchar_t* const* classNames, std::int32_t count);
    BrowserWindowFinder(const BrowserWindowFinder&) = delete;
    BrowserWindowFinder& operator=(const BrowserWindowFinder&) = delete;
    ~BrowserWindowFinder();

private:
    HWND* window_;
    HWND old_window_;
};

// Makes sure that the owner is on the monitor under the mouse pointer, where the dialog then opens:
// moves a hidden owner there, or makes a hidden fake owner when there is none.
class ParentWindowAdjuster {
public:
    explicit ParentWindowAdjuster(HWND* owner);
    ParentWindowAdjuster(const ParentWindowAdjuster&) = delete;
    ParentWindowAdjuster& operator=(const ParentWindowAdjuster&) = delete;
    ~ParentWindowAdjuster();

private:
    void BeginMoved();
    void EndMoved();
    void BeginFake();
    void EndFake();

    HWND* window_;
    HWND old_window_;           // null: the owner is a fake, which this object destroys
    HWND new_window_ = nullptr; // what was moved or made; null when nothing was
    RECT saved_{};              // the place of the moved window before the move
};

} // namespace obwmv
