// The host process's side of the library's edge: everything around the one request that it serves.
#pragma once

#include <windows.h>

#include <cstdint>

namespace obwmv {

// Binds all modules and runs HostEntry between LogLaunch and LogExit, inside the library's
// activation context. Returns HostEntry's result, or -1 when a module or the context can't be had.
// An exception may pass; LogExit is called all the same.
int RunHost(HWND owner, std::uint32_t id);

} // namespace obwmv
