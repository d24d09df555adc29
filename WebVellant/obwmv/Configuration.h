// The product's settings, opened by one of its other programs.
#pragma once

#include <windows.h>

namespace obwmv {

// Binds what the settings need and shows them. False when a module or the activation context can't
// be had. An exception of a module that is bound passes; one of the settings doesn't: they were
// opened then.
bool Configure(HWND owner);

} // namespace obwmv
