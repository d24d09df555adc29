// The settings as the product's other programs open them.
#pragma once

#include <windows.h>

namespace obcore {

// Shows the settings window over `parent`, or without an owner when `parent` is null or hidden. The
// automatic transforms are saved when the user ends the window with OK; nothing else is. Archive
// service, resource module and provider manager are bound. Blocks the calling thread, which has
// the language of the options meanwhile and its own again afterwards; the window opens in the
// caller's activation context. A dialog that isn't in the resources ends the process. What is
// thrown puts the language back and ends the provider manager.
void ShowConfiguration(HWND parent);

} // namespace obcore
