// The module that this code lies in: the service, or a test program that links it.
#pragma once

#include <windows.h>

#include <string>

// The linker's name for the start of the module, which is also its handle.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace obarchive {

inline HINSTANCE ThisModule() { return reinterpret_cast<HINSTANCE>(&__ImageBase); }

// Full path of a neighbour of the module; empty when the module's own path can't be told.
inline std::wstring PathBesideModule(const wchar_t* name) {
    constexpr DWORD kLongestPath = 32768; // UTF-16 units, the system's own limit
    std::wstring path(kLongestPath, L'\0');
    const DWORD length = GetModuleFileNameW(ThisModule(), path.data(), kLongestPath);
    if (length == 0 || length == kLongestPath) return {};
    path.resize(length);
    path.resize(path.rfind(L'\\') + 1);
    return path + name;
}

// A text of the module's own string table; empty when there is none. No copy is made by the system:
// the texts are counted, and not ended by a NUL.
inline std::wstring OwnText(UINT id) {
    const wchar_t* text = nullptr;
    const int length = LoadStringW(ThisModule(), id, reinterpret_cast<wchar_t*>(&text), 0);
    return length > 0 ? std::wstring(text, static_cast<std::size_t>(length)) : std::wstring();
}

} // namespace obarchive
