// A picture of a window, with its frame, as a PNG file.
#pragma once

#include <windows.h>

#include <string>

namespace mailpage {

// The window is drawn anew first. False when the picture can't be taken or written.
bool SavePicture(HWND window, const std::wstring& file);

} // namespace mailpage
