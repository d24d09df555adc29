// Starting the host process for one request and waiting for it with the browser's messages pumped.
#pragma once

#include <windows.h>

#include <cstdint>

namespace obwmv {

// All run on the calling browser thread, which is held until the host has ended.

// Covers the owner's root window with a transparent layer window that owns the host's dialog, holds
// the root window disabled meanwhile, and answers LaunchHost's exit code.
std::uint32_t ShowWithLayer(std::uint32_t id, HWND owner);

// Starts obwmvapp.exe beside this library and answers its exit code, or -1 (as unsigned) when it
// can't be started.
std::uint32_t LaunchHost(std::uint32_t id, HWND owner);

// Dispatches this thread's messages until `process` has ended; a WM_QUIT is posted again afterwards.
void PumpUntilSignalled(HANDLE process);

}  // namespace obwmv
