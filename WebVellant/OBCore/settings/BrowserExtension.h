// Adding the product's extension to a browser.
#pragma once

#include <windows.h>

namespace obcore {

// A button of the browser group was pressed: opens the extension's page, or for Firefox its file
// beside the running program, in that browser. One of 32 bits gets a warning over `window` instead;
// only the 32-bit view counts here, whatever else is installed. False when `id` is no such button.
// A browser that doesn't start isn't reported. On the thread of the dialog. Throws std::bad_alloc.
bool OnBrowserCommand(HWND window, int id);

} // namespace obcore
