// Procedures in front of a window's own. The common controls offer the same, but ask the window for
// a property at each message and again at each procedure; here a message costs one look into a
// table.
#pragma once

#include <windows.h>

#include <commctrl.h>

namespace ObLibX {

// From now on `procedure` gets the window's messages first, with `object` as its id and its data.
// It belongs to the caller and is removed by it, at WM_NCDESTROY at the latest. What is added twice
// is there once. On the window's thread, which is that of all dialogs. Throws std::bad_alloc.
//
// A window that somebody else has subclassed before is left to the common controls, as theirs may
// be what is there, and they put back what they have found.
void AddSubclass(HWND window, SUBCLASSPROC procedure, const void* object);

// Also from inside a procedure of this window. Nothing happens when there is no such procedure, or
// no window.
void RemoveSubclass(HWND window, SUBCLASSPROC procedure, const void* object);

// For a procedure: what the ones after it and the window itself make of a message. 0 when the
// window has gone meanwhile.
LRESULT CallNextSubclass(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

} // namespace ObLibX
