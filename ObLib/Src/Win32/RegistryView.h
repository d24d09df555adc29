// Keys of the registry by view: a 64-bit Windows keeps a half of its own for 32-bit programs, and
// an installer may have written into either.
#pragma once

#include <windows.h>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace ObLib {

// Plain leaves the choice to the system.
enum class RegistryView : REGSAM { Plain = 0, Bits32 = KEY_WOW64_32KEY, Bits64 = KEY_WOW64_64KEY };

// Opens the key `path` of `root` with `access`. Empty when it can't be opened.
inline UniqueRegistryKey OpenRegistryKey(HKEY root, const wchar_t* path, REGSAM access,
                                         RegistryView view = RegistryView::Plain) noexcept {
    UniqueRegistryKey key;
    const REGSAM wanted = access | static_cast<REGSAM>(view);
    if (RegOpenKeyExW(root, path, 0, wanted, key.Put()) != ERROR_SUCCESS) key.Reset();
    return key;
}

} // namespace ObLib
