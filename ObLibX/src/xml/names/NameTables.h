// Names of charsets and of character entities.
#pragma once

#include <cstdint>
#include <string_view>

namespace ObLibX {

inline constexpr std::int32_t kCodePageUtf32 = 65005; // private to this library
inline constexpr std::int32_t kCodePageUtf16 = 1200;
inline constexpr std::int32_t kCodePageUtf8 = 65001;

// The code page of a charset name; 65005 for every name that begins with "UTF-32" in this case, 0
// for the empty name, -1 for one that is unknown or has 100 or more characters. Allocates nothing.
std::int32_t LookupCodePage(std::wstring_view name);

// The code point of an entity name without & and ;, 0 when it is unknown. Folds ASCII case; of a
// pair that differs in case only the upper one is ever found. Allocates nothing.
std::uint32_t LookupEntity(std::wstring_view name);

} // namespace ObLibX
