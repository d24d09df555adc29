// References in text: &lt; and its kin, both ways.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ObLibX {

inline constexpr std::uint32_t kEncodeKeepReferences = 0x8; // what looks like a reference stays
inline constexpr std::uint32_t kEncodeAttribute = 0x100;    // quotes too

// Decodes the references of attribute values and element data. A reference ends in a ; within nine
// units of its &, its name is folded to lower case, and a number above 0xFFFF becomes a surrogate
// pair. What is no reference stays as it stands: an unknown name, a number that is 0, above
// 0x10FFFF or followed by anything but its ;.
//
// With kDocTrim or kDocCollapse in `flags` outer white space is cut, and with kDocCollapse inner
// runs become one blank; white space that is written as a reference is meant, and stays. Linear.
// Throws std::bad_alloc.
std::wstring DecodeText(std::wstring_view text, std::uint32_t flags);
// The same into a string whose memory is used again. `text` isn't part of it.
void DecodeText(std::wstring_view text, std::uint32_t flags, std::wstring& out);

// Replaces < & > (and with kEncodeAttribute " ') by their references. With kEncodeKeepReferences a
// & that begins what looks like a reference, known or not, stays as it is together with that.
// Linear. Throws std::bad_alloc.
std::wstring EncodeText(std::wstring_view text, std::uint32_t flags);

} // namespace ObLibX
