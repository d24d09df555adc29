// A stock window that a control makes for itself beside its own.
#pragma once

#include <windows.h>

#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

struct HelperTraits {
    const wchar_t* className = nullptr;
    const wchar_t* title = L"";
    DWORD style = 0; // besides WS_CHILD
    DWORD extendedStyle = 0;
    const wchar_t* property = nullptr; // by which it is known; its value is 1
};

// A child of `parent` at the bottom of the Z-order, which destroys it with its other children; so
// does WM_CLOSE. Null when it can't be made. On the parent's thread.
HWND MakeHelperWindow(HWND parent, const PixelRect& rect, const HelperTraits& traits);

// How many children of `parent` have a property.
int CountWithProperty(HWND parent, const wchar_t* property);
// The same of those that MakeHelperWindow has made, whose windows needn't be asked.
int CountHelpers(HWND parent, const wchar_t* property);

// In the coordinates of its parent.
PixelRect RectInParent(HWND child);
void MoveChild(HWND child, const PixelRect& rect);

} // namespace ObLibX
