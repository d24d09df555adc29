// What the base library reads of windows.
#pragma once

#include <windows.h>

#include "ObLib/Src/ObString.h"

namespace ObLib {

// The window's text, also that of a control of another process's window as far as the system gives
// it; empty when there is none. Gives its length in units. A text for which more than 0x7FFFFFFF
// units would be needed ends the process. Sends messages to the window. Throws std::bad_alloc.
int GetWindowTextString(HWND window, ObString& out);

} // namespace ObLib
