// Texts that an installer wrote into the registry.
#pragma once

#include <windows.h>

#include <string>

#include "ObLib/Src/Win32/RegistryView.h"

namespace providers {

// The text of a value, without variables in it; empty when there is none or it is longer than any
// path. `name` null: the key's own value. May throw std::bad_alloc.
inline std::wstring RegistryText(HKEY root, const wchar_t* path, const wchar_t* name,
                                 ObLib::RegistryView view) {
    constexpr DWORD kMost = 4096; // units
    const auto key = ObLib::OpenRegistryKey(root, path, KEY_QUERY_VALUE, view);
    if (!key) return {};
    std::wstring text(kMost, L'\0');
    DWORD size = kMost * sizeof(wchar_t);
    if (RegGetValueW(key.Get(), nullptr, name, RRF_RT_REG_SZ, nullptr, text.data(), &size) !=
        ERROR_SUCCESS) {
        return {};
    }
    text.resize(text.find(L'\0'));
    return text;
}

} // namespace providers
