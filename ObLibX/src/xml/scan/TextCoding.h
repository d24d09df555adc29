// References in text, such as &lt;, decoded and encoded.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ObLibX {

inline constexpr std::uint32_t kEncodeKeepReferences = 0x8; // what looks like a reference stays
inline constexpr std::uint32_t kEncodeAttribute = 0x100;    // quotes too

// Decodes the references of attribute values and element data. A reference ends with a ; within
// nine units of its &, its name is folded to lower case, and a number above 0xFFFF becomes a
// surrogate pair. What is no reference stays unchanged: an unknown name, a number that is 0 or
// above 0x10FFFF, a number that another unit than ; follows.
//
// With kDocTrim or kDocCollapse in `flags` outer white space is cut, and with kDocCollapse inner
// runs become one blank. White space that is written as a reference is intended and stays. Linear.
// Throws std::bad_alloc.
std::wstring DecodeText(std::wstring_view text, std::uint32_t flags);
// As above, into a string whose memory is used again. `text` must not be part of `out`.
void DecodeText(std::wstring_view text, std::uint32_t flags, std::wstring& out);

// Replaces < & > (and with kEncodeAttribute " ') by their references. With kEncodeKeepReferences a
// & that begins what looks like a reference stays, and so does the reference, known or not.
// Linear. Throws std::bad_alloc.
std::wstring EncodeText(std::wstring_view text, std::uint32_t flags);

} // namespace ObLibX
