// The browser in which a request was made.
#pragma once

#include <windows.h>

#include <string>

namespace obcore {

// Image file, as a device path of up to 260 characters, of the process that owns the window which
// owns `window`; of `window` itself where no window owns it. Empty when that process can't be
// opened.
std::wstring BrowserImage(HWND window);

} // namespace obcore
