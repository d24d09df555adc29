// Fetching a module's entry points by name into a table of typed pointers.
#pragma once

#include <windows.h>

#include <type_traits>

#include "OBCore/modules/ObTrace.h"

namespace obcore {

// Fetches one entry into its typed pointer. False, with a trace line, when the module lacks it.
template <class Function>
bool FetchEntry(HMODULE module, const char* name, Function*& entry) {
    static_assert(std::is_function_v<Function>);
    const FARPROC address = GetProcAddress(module, name);
    if (!address) {
        ObTrace("GetProcAddress %s failed", name);
        return false;
    }
    // By way of void*: the entry has its own signature, which only the contract knows.
    entry = reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
    return true;
}

} // namespace obcore
