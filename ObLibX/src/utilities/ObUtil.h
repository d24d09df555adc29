// Small questions about the machine, a dialog and one setting. None of them keeps anything; any
// thread may ask, unless a window is concerned, which belongs to its own.
#pragma once

#include <windows.h>

#include <cstdint>

namespace ObLibX {

// Whether the user has chosen a high contrast scheme. The one place that asks for it.
bool IsHighContrast();

// Whether the screen has fewer than 32 bits a pixel.
bool IsLowColor();

// Pixels to the inch of the desktop's window; 0 when it gives no device context.
int GetDpi();

// A length for 96 pixels to the inch in the desktop's, rounded.
int Scale(int value);

// Whether all three of the system's numbers are at least these, as the system reports them to this
// program.
bool IsWindowsVersionAtLeast(DWORD major, DWORD minor, WORD servicePack);

// The first id from 1000 up that no child of `dialog` has.
int FirstFreeControlId(HWND dialog);

// The background colour of the device context of the window's parent; CLR_INVALID without a parent.
COLORREF GetParentBackground(HWND window);

// How zips are compressed by default: 0 not at all, 9 at best. 9 unless the registry's text for the
// user, or where that can't be read the machine's, is a number that is 0.
std::int32_t ReadDefaultCompressionMethod();

} // namespace ObLibX
