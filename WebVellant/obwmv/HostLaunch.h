// Starting the host process for one request and waiting for it with the browser's messages pumped.
//
// All of it runs on the calling browser thread, which is blocked until the host has ended; no other
// thread is made. The host's exit is the only signal between the two.
#pragma once

#include <windows.h>

#include <cstdint>

namespace obwmv {

// Returned in place of an exit code when the host couldn't be started.
inline constexpr std::uint32_t kHostNotStarted = static_cast<std::uint32_t>(-1);

// Covers `owner`'s root window with a transparent layer window that owns the host's dialog, keeps
// the root window disabled meanwhile, and returns LaunchHost's result. When no layer can be made,
// the host gets `owner` itself and nothing is disabled.
std::uint32_t ShowWithLayer(std::uint32_t id, HWND owner);

// Starts obwmvapp.exe of this library's folder for the block `id`, with `owner` as its dialog's
// owner, and returns its exit code, or kHostNotStarted.
std::uint32_t LaunchHost(std::uint32_t id, HWND owner);

// Dispatches this thread's messages until `process` has ended. A WM_QUIT doesn't end the wait; it
// is posted again afterwards with its exit value.
void PumpUntilSignalled(HANDLE process);

} // namespace obwmv
