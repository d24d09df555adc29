// References in text: &lt; and its kin, both ways.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ObLibX {

inline constexpr std::uint32_t kEncodeKeepReferences = 0x8; // what looks like a reference stays
inline constexpr std::uint32_t kEncodeAttribute = 0x100;    // quotes too

// Decodes the references of attribute values and element data; kDocTrim and kDocCollapse in `flags`
// trim white space. What is no reference stays as it is. Throws std::bad_alloc.
std::wstring DecodeText(std::wstring_view text, std::uint32_t flags);

// Replaces < & > (and with kEncodeAttribute " ') by their references. Throws std::bad_alloc.
std::wstring EncodeText(std::wstring_view text, std::uint32_t flags);

} // namespace ObLibX
