#include "services/providers/http/Utf8.h"

#include <windows.h>

#include "ObLib/Src/Win32/Utf8.h"

namespace providers {

std::string ToUtf8(std::wstring_view text) { return ObLib::ToUtf8(text); }

std::optional<std::wstring> FromUtf8(std::string_view bytes) {
    if (bytes.empty()) return std::wstring();
    const int size = static_cast<int>(bytes.size());
    const int units =
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), size, nullptr, 0);
    if (units == 0) return std::nullopt;
    std::wstring text(static_cast<std::size_t>(units), L'\0');
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), size, text.data(), units);
    return text;
}

} // namespace providers
