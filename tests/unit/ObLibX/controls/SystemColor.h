// A colour of the system as a test wants it.
#pragma once

#include <windows.h>

// For a scope. The system sends WM_SYSCOLORCHANGE to all windows, at both ends of it.
class SystemColor {
public:
    SystemColor(int index, COLORREF color) : index_(index), old_(GetSysColor(index)) {
        SetSysColors(1, &index_, &color);
    }
    ~SystemColor() { SetSysColors(1, &index_, &old_); }
    SystemColor(const SystemColor&) = delete;
    SystemColor& operator=(const SystemColor&) = delete;

private:
    int index_;
    COLORREF old_;
};
