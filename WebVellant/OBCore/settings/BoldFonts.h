// The fonts of a dialog's headlines.
#pragma once

#include <windows.h>

#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obcore {

// Owns the bold fonts that one dialog gave to its controls. A control doesn't own its font and may
// still paint with it while the dialog is being destroyed, so the object goes after the window:
// it is a member of the dialog's object, which is outside of DoModal.
class BoldFonts {
public:
    // Gives the control `id` of `window` the bold form of the font that it has. A control that
    // isn't there or has no font of its own is left as it is.
    void SetBoldFont(HWND window, int id);

    // The bold form of `control`'s font, owned by this object; null when it can't be had.
    HFONT MakeBold(HWND control);

private:
    std::vector<ObLib::UniqueFont> fonts_;
};

} // namespace obcore
