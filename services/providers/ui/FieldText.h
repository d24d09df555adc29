// The text of an edit field of a dialog.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>

namespace providers {

inline std::wstring FieldText(HWND dialog, int id) {
    const HWND field = GetDlgItem(dialog, id);
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(field)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(
        GetWindowTextW(field, text.data(), static_cast<int>(text.size()))));
    return text;
}

// Without blanks around it.
inline std::wstring TrimmedText(HWND dialog, int id) {
    const std::wstring text = FieldText(dialog, id);
    const std::size_t first = text.find_first_not_of(L" \t");
    if (first == std::wstring::npos) return {};
    return text.substr(first, text.find_last_not_of(L" \t") - first + 1);
}

} // namespace providers
