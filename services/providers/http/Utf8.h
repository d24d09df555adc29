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

} // namespace providers
