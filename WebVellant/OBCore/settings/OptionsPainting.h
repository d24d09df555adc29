// How the settings window looks: its ground and lines, the fonts and colours of its controls, and
// its pictures. On the thread of the dialogs.
#pragma once

#include <windows.h>

#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/dialog/ObXDlg.h"

namespace obcore {

// The ground, which ends above the strip of the buttons, and the lines between the groups. For
// WM_PAINT.
void PaintOptions(HWND window);

// Whether a control is on the ground, and not in the strip of the buttons.
bool IsOnGround(HWND window, HWND control);
// The colour of the ground.
COLORREF GroundColor();

// Gives the controls of the open dialog their fonts and colours.
void StyleOptions(const ObLibX::ObXDlg& dialog);

// The pictures of the window. Its labels don't own them, so this object goes after the window.
class OptionsPictures {
public:
    // Loads those for the screen's scale and gives them to their labels. One that can't be loaded
    // leaves its label empty.
    void Show(HWND window);

private:
    std::vector<ObLib::UniqueBitmap> bitmaps_;
};

} // namespace obcore
