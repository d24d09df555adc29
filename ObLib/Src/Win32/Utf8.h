// UTF-16 as UTF-8.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace ObLib {

// Half a surrogate pair becomes U+FFFD. The text has fewer than 2^31 units. Throws std::bad_alloc.
inline std::string ToUtf8(std::wstring_view text) {
    const int units = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), units, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

} // namespace ObLib
