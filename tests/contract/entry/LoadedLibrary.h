// The real library, loaded from the folder of the test program for a scope, with its exports.
#pragma once

#include <windows.h>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "obwmv/Exports.h"

namespace obtest {

struct LoadedLibrary {
    LoadedLibrary();
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;
    // The library is unloaded afterwards, so that each test meets a fresh one.
    ~LoadedLibrary();

    template <class Function>
    Function* Entry(const char* name) const {
        return reinterpret_cast<Function*>(
            reinterpret_cast<void*>(GetProcAddress(module.Get(), name)));
    }

    ObLib::UniqueModule module;
    decltype(&GetOpenFileNameInBrowser) getOpenFileName;
    decltype(&FileOpenDialog_ShowInBrowser) show;
    decltype(&FileOpenDialog_GetResultInBrowser) getResult;
    decltype(&FileOpenDialog_GetResultsInBrowser) getResults;
};

} // namespace obtest
