// What this process uses at a moment, compared with what it used before: a request that leaks shows
// here.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace obtest {

struct ProcessResources {
    DWORD handles = 0;
    DWORD gdiObjects = 0;
    DWORD userObjects = 0;
    std::vector<std::wstring> files; // all below the temporary folder
    SIZE_T committed = 0;            // bytes

    static ProcessResources Now();
};

// Expects that now there is nothing more than `before`, and of memory at most 4 MiB, which is less
// than one block for every tenth of a thousand requests.
void ExpectNoMoreThan(const ProcessResources& before);

} // namespace obtest
