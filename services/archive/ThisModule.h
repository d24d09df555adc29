// What the service finds through the module that it is linked into: the service itself, or a test
// program.
#pragma once

#include <windows.h>

#include <string>

#include "ObLib/Src/Win32/ModulePath.h"

namespace obarchive {

using ObLib::ThisModule;

// Full path of a file in the module's folder; empty when the module's own path can't be had.
inline std::wstring PathBesideModule(const wchar_t* name) {
    return ObLib::PathBesideModule(ThisModule(), name).value_or(std::wstring());
}

// A text of the module's own string table; empty when there is none. The system makes no copy: the
// texts are counted, and not ended by a NUL.
inline std::wstring OwnText(UINT id) {
    const wchar_t* text = nullptr;
    const int length = LoadStringW(ThisModule(), id, reinterpret_cast<wchar_t*>(&text), 0);
    return length > 0 ? std::wstring(text, static_cast<std::size_t>(length)) : std::wstring();
}

} // namespace obarchive
