// The process of a request's host, looked at and ended from outside, as with the system's task
// manager.
#pragma once

#include <windows.h>

namespace obtest {

inline constexpr UINT kKilled = 1; // the exit code that a task manager gives

// Whether a host that this process started is running.
bool HostRuns();

// Ends the host that this process started and waits until it is gone. False when there is none.
// To be called on another thread than that of the request.
bool KillHost(UINT exitCode = kKilled);

// Makes the host crash, by a thread that starts at address 0, and waits until it is gone.
bool CrashHost();

} // namespace obtest
