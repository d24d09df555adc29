// Centres a window on the one that it belongs to.
#pragma once

#include <windows.h>

namespace ObLibX {

// Works the place of a window out and, with `move`, moves it there. `position` (may be null) gets
// the top left corner. `rectangle` (may be null): a size to place in place of the window's own.
// Where it goes: WindowPlacement.h. Any thread that owns the window.
void CenterWindow(HWND window, POINT* position, const RECT* rectangle, bool move);

// The next window that is centred opens at the cursor.
void PlaceNextWindowAtCursor();

} // namespace ObLibX
