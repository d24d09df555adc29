// A password on the clipboard, because somebody asked for it there.
#pragma once

#include <windows.h>

namespace obarchive {

// Puts the text on the clipboard in the name of `window`, marked so that the system neither keeps
// it in the clipboard's history nor takes it to other devices. It stays there until something else
// is copied. False when another program holds the clipboard.
bool CopySecret(HWND window, const wchar_t* text);

} // namespace obarchive
