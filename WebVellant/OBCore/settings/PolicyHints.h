// Tips that say of a disabled control that the administrator decided it.
#pragma once

#include <windows.h>

#include <span>
#include <string>

namespace obcore {

// Belongs to one dialog's object. A disabled window gets no mouse, so each tip belongs to the
// rectangle of the dialog that the control covers, and is seen only while the control is disabled.
class PolicyHints {
public:
    // Adds a tip for each of these controls of `dialog` that is there, shown and disabled. At the
    // end of opening: the rectangles are those of now, and controls that move later leave their
    // tips. Called again, it moves them. On the dialog's thread. Throws std::bad_alloc.
    void Show(HWND dialog, std::span<const int> ids);

    // The window of the tips, which the dialog's window owns; null before the first one.
    [[nodiscard]] HWND Window() const noexcept { return tips_; }

private:
    void Add(HWND dialog, int id);

    HWND tips_ = nullptr;
    std::wstring text_; // the window of the tips reads it
};

} // namespace obcore
