// Which folders respond: a share that doesn't blocks each call for a minute.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace providers {

// Milliseconds.
struct ReachLimits {
    DWORD all = 1'000;   // for all of the folders, once one is reached
    DWORD none = 10'000; // while none is: disks and connections may have to be woken
};

// For each folder whether it was found in time. All are asked side by side, each on a thread of its
// own that nobody waits for beyond the limits. Throws std::bad_alloc.
std::vector<bool> ReachableFolders(const std::vector<std::wstring>& folders,
                                   const ReachLimits& limits = {});

} // namespace providers
