// The process of a request's host, seen and ended from outside, as a person does with the system's
// task manager.
#pragma once

#include <windows.h>

namespace obtest {

inline constexpr UINT kKilled = 1; // the exit code that a task manager gives

// Whether a host that this process started is running.
bool HostRuns();

// Ends the host that this process started and waits until it is gone. False when there is none.
// Called on another thread than that of the request.
bool KillHost(UINT exitCode = kKilled);

// Makes the host crash, by a thread that begins at address 0, and waits until it is gone.
bool CrashHost();

// Waits until a call into a stand-in is held (script: Hold=NAME). False after 20 seconds.
bool AwaitHeldCall();

// Lets a held call go, or forgets that one of a killed process was held.
void ReleaseHeldCall();

} // namespace obtest
