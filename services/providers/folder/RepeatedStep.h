// Steps with a file that another program may have open for a moment.
#pragma once

#include <windows.h>

namespace providers {

// Repeats a step, for two seconds at most, while another program, such as a scanner or a sync
// client, has the new file open. The last error is that of the last try.
template <class Step>
bool Repeat(Step step) {
    constexpr int kAttempts = 100;
    constexpr DWORD kPause = 20; // milliseconds
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (step()) return true;
        const DWORD error = GetLastError();
        if (error != ERROR_SHARING_VIOLATION && error != ERROR_ACCESS_DENIED) return false;
        Sleep(kPause);
        SetLastError(error);
    }
    return false;
}

} // namespace providers
