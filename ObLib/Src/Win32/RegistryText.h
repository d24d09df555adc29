// Texts of the registry.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>

namespace ObLib {

// What becomes of a text with variables such as %TEMP% (REG_EXPAND_SZ): it is read with their
// values in it, or refused as a value of another type.
enum class RegistryVariables { Expand, Refuse };

// Reads a text of at most `longest` characters, up to its first NUL, from a key that was opened
// with KEY_QUERY_VALUE. `name` null: the key's own value. ERROR_SUCCESS with the text; any other
// status leaves `text` empty: ERROR_FILE_NOT_FOUND without such a value, ERROR_UNSUPPORTED_TYPE for
// another type, ERROR_MORE_DATA for a longer text. May throw std::bad_alloc.
inline LSTATUS ReadRegistryText(HKEY key, const wchar_t* name, std::size_t longest,
                                RegistryVariables variables, std::wstring& text) {
    // Without NOEXPAND the system takes a text with variables for a plain one.
    const DWORD flags = RRF_RT_REG_SZ | (variables == RegistryVariables::Refuse ? RRF_NOEXPAND : 0);
    text.assign(longest + 1, L'\0'); // RegGetValueW adds a NUL where the stored text has none
    auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    const LSTATUS status = RegGetValueW(key, nullptr, name, flags, nullptr, text.data(), &size);
    text.resize(status == ERROR_SUCCESS ? text.find(L'\0') : 0);
    return status;
}

// Stores a text, as REG_SZ with its NUL, in a key that was opened with KEY_SET_VALUE. `name` null:
// as the key's own value. The system's status.
inline LSTATUS WriteRegistryText(HKEY key, const wchar_t* name, const std::wstring& text) noexcept {
    const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    return RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), size);
}

} // namespace ObLib
