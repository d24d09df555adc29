// What whole requests with a cloud account share.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/WindowKit.h"

namespace obtest {

// Above the five megabytes that the default options allow, and nothing that a zip makes smaller.
inline std::string LargeContent() {
    std::string content(6 << 20, '\0');
    std::uint32_t state = 88172645;
    for (char& byte : content) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        byte = static_cast<char>(state);
    }
    return content;
}

// The fields of the text with links.
inline std::vector<std::wstring> FieldsOf(const std::wstring& text) {
    std::vector<std::wstring> fields(1);
    for (const wchar_t character : text) {
        if (character == L'|') {
            fields.emplace_back();
        } else {
            fields.back() += character;
        }
    }
    return fields;
}

inline HWND AwaitDialogWith(int control) {
    return WaitForTopWindow([=](HWND window) {
        return IsWindowVisible(window) && GetDlgItem(window, control) != nullptr;
    });
}

} // namespace obtest
