// Texts between the system's form and that of the web.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace providers {

// Half a surrogate pair becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);

// Nothing when the bytes aren't UTF-8.
std::optional<std::wstring> FromUtf8(std::string_view bytes);
// The same; empty when they aren't.
inline std::wstring TextFromUtf8(std::string_view bytes) { return FromUtf8(bytes).value_or(L""); }

} // namespace providers
