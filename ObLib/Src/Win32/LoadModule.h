// Loading a module without the loader's own error box, and keeping one's own module loaded.
#pragma once

#include <windows.h>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace ObLib {

// Loads the module with this full path. Empty when it can't be loaded; the last error is the
// reason. A damaged file or a missing import shows no box of the system, whatever the process has
// set: the caller reports what concerns the user. Changes the error mode of the calling thread
// only, and only for the length of the call.
UniqueModule LoadModule(const wchar_t* path) noexcept;

// One more reference on the module that this code is linked into, for a thread that may outlive
// whoever started it. Empty when the system refuses. The thread gives the reference back with
// FreeLibraryAndExitThread, a call that doesn't return into the module.
UniqueModule KeepThisModule() noexcept;

} // namespace ObLib
