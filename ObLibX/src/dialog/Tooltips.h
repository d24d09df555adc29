// The tooltips of one dialog.
#pragma once

#include <windows.h>

namespace ObLibX {

// A tooltip window for `dialog`, which is its owner and destroys it. Null when it can't be made.
HWND MakeTooltipWindow(HWND dialog);

// Shows `text` while the mouse rests on `tool`, a child of the dialog. The text belongs to the
// caller and is valid as long as the tooltip window. A static text notifies of clicks from now on
// (SS_NOTIFY). False when it can't be added.
bool AddTool(HWND tooltips, HWND tool, const wchar_t* text);

} // namespace ObLibX
