// The product's help page.
#pragma once

#include <windows.h>

namespace obwmv {

// Asks the archive service for the page; false when the service can't be bound. An exception of the
// service passes.
bool ShowWebHelp(HWND owner);

} // namespace obwmv
