// How check boxes and radios are drawn in high contrast, in place of their images.
#pragma once

#include <windows.h>

#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

// The numbers are those of BM_GETCHECK.
enum class CheckState { Off = BST_UNCHECKED, On = BST_CHECKED, Third = BST_INDETERMINATE };

// A frame in `box`; on: a square in its middle, third state: a triangle. GDI+ is running, as it is
// while there is a dialog.
void DrawContrastCheck(HDC dc, const PixelRect& box, CheckState state, COLORREF color);

struct RadioColors {
    COLORREF line = 0;
    COLORREF ground = 0; // of the window
};

// A circle in a paler one; on: its inside is filled, too.
void DrawContrastRadio(HDC dc, const PixelRect& box, bool isOn, const RadioColors& colors);

} // namespace ObLibX
