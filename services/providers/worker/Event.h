// Events: how the threads of this module wait for each other.
#pragma once

#include <windows.h>

#include <new>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace providers {

// Not set, and stays set once it is. Throws std::bad_alloc, also when the system has none left.
inline ObLib::UniqueKernelHandle MakeEvent() {
    ObLib::UniqueKernelHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (!event) throw std::bad_alloc();
    return event;
}

inline bool IsSet(HANDLE event) noexcept { return WaitForSingleObject(event, 0) == WAIT_OBJECT_0; }

} // namespace providers
