// Binding a sister module: it is loaded, and its entries are fetched by name into a table of typed
// pointers.
#pragma once

#include <windows.h>

#include <string>
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

// Loads the module with this full path and lets `fetchAll` fetch its entries. Null, with nothing
// left loaded, when the module can't be loaded (with a trace line) or `fetchAll` returns false. The
// caller owns the module; it isn't in an owner, as it is freed by hand on process detach.
HMODULE BindModule(const std::wstring& path, bool (*fetchAll)(HMODULE module));

} // namespace obcore
