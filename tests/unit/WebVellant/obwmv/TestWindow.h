// Real windows of classes of a test's own.
#pragma once

#include <windows.h>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obtest {

enum class Icon { None, Application };

// Registers the class on first use and makes a top-level window of it.
ObLib::UniqueWindow MakeWindow(const wchar_t* className, Icon icon, DWORD style,
                               const RECT& place = {10, 20, 210, 120}, HWND owner = nullptr);

// Runs `body` on a thread of its own. True when it ended in an access violation, as code does that
// continues after a failed check of a null pointer.
bool EndsInAccessViolation(void (*body)());

} // namespace obtest
