// Cancels the archive service's progress window, which the host's process shows.
#pragma once

#include <windows.h>

namespace obtest {

// Waits for a visible progress window of any process, presses its Cancel button and waits until the
// window is gone. False after `limit` milliseconds. Any thread but the window's own.
bool CancelProgressWindow(DWORD limit = 20000);

} // namespace obtest
