// Texts that an installer wrote into the registry.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>

#include "ObLib/Src/Win32/RegistryText.h"
#include "ObLib/Src/Win32/RegistryView.h"

namespace providers {

// The text of a value, with the values of variables in it; empty when there is none or it is longer
// than any path. `name` null: the key's own value. May throw std::bad_alloc.
inline std::wstring RegistryText(HKEY root, const wchar_t* path, const wchar_t* name,
                                 ObLib::RegistryView view) {
    constexpr std::size_t kLongest = 4095; // characters
    const auto key = ObLib::OpenRegistryKey(root, path, KEY_QUERY_VALUE, view);
    if (!key) return {};
    std::wstring text;
    ObLib::ReadRegistryText(key.Get(), name, kLongest, ObLib::RegistryVariables::Expand, text);
    return text;
}

} // namespace providers
