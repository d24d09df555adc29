// How long an upload waits for a folder that can't be reached any more.
#pragma once

#include <windows.h>

namespace providers {

// Milliseconds.
struct FolderPatience {
    DWORD resume = 30'000; // for the folder, from a break of the copy on until it makes progress
    DWORD rename = 20'000; // until it is known whether the file got its name
    DWORD pause = 250;     // between two tries
};

} // namespace providers
