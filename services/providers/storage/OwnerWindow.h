// What a window that comes in front of another one does to that one.
#pragma once

#include <windows.h>

namespace providers {

// Gives the focus back to the window of this thread that had it.
class KeptFocus {
public:
    KeptFocus() = default;
    ~KeptFocus() {
        if (IsWindow(window_)) SetFocus(window_);
    }
    KeptFocus(const KeptFocus&) = delete;
    KeptFocus& operator=(const KeptFocus&) = delete;

private:
    HWND window_ = GetFocus();
};

// Disables the owner for a scope, unless it was disabled before. That scope ends before the window
// in front is destroyed, or the system would activate another program's window.
class DisabledOwner {
public:
    explicit DisabledOwner(HWND owner) {
        // EnableWindow returns whether the window was disabled before.
        if (owner && !EnableWindow(owner, FALSE)) owner_ = owner;
    }
    ~DisabledOwner() {
        if (IsWindow(owner_)) EnableWindow(owner_, TRUE);
    }
    DisabledOwner(const DisabledOwner&) = delete;
    DisabledOwner& operator=(const DisabledOwner&) = delete;

private:
    HWND owner_ = nullptr;
};

} // namespace providers
