// Asking the system about its code pages.
#pragma once

#include <cstdint>
#include <string>

#include "ObLibX/src/xml/encoding/SystemCalls.h"

namespace obtest {

inline bool HasPage(std::uint32_t page) {
    return ObLibX::SystemToWide(page, "A", 1, nullptr, 0) == 1;
}

// The whole text at once, as the system reads it.
inline std::u16string DecodePage(std::uint32_t page, const std::string& text) {
    std::u16string wide(text.size() * 2 + 1, u'\0');
    const std::int32_t units = ObLibX::SystemToWide(
        page, text.data(), static_cast<std::int32_t>(text.size()),
        reinterpret_cast<wchar_t*>(wide.data()), static_cast<std::int32_t>(wide.size()));
    wide.resize(static_cast<std::size_t>(units));
    return wide;
}

} // namespace obtest
