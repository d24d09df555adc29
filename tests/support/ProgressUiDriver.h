// The UI driver of the archive service's progress window: reads it and presses its buttons.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "tests/support/WindowKit.h"

namespace obtest {

// The visible progress window of a process, or of any process for 0; null when there is none.
HWND FindProgressWindow(DWORD processId = GetCurrentProcessId());

// Waits for a visible progress window of any process, presses its Cancel button and waits until the
// window is gone. False after `limit` milliseconds. Any thread but the window's own.
bool CancelProgressWindow(DWORD limit = kUiLimit);

// Waits for this process's progress window and runs `act` on a thread of its own. The run closes
// the window.
class ProgressUiDriver : public WindowDriver {
public:
    explicit ProgressUiDriver(std::function<void(HWND)> act);
};

} // namespace obtest
