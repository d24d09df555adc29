// The numbers that every room of the library knows: a document's flags, the types of its nodes and
// the longest spans that it can index.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ObLibX {

// Bits of DocumentState::docFlags. All are 0 unless a client sets them.
inline constexpr std::uint32_t kDocModified = 0x2;     // the text was changed since it was set
inline constexpr std::uint32_t kDocIgnoreCase = 0x8;   // names compare ignoring ASCII case
inline constexpr std::uint32_t kDocStreamRead = 0x10;  // one forward pass over a file
inline constexpr std::uint32_t kDocStreamWrite = 0x20; // elements are appended to a file
inline constexpr std::uint32_t kDocStreamThird = 0x40; // cleared together with the other two
inline constexpr std::uint32_t kDocTrim = 0x100;     // data read has its outer white space trimmed
inline constexpr std::uint32_t kDocCollapse = 0x200; // as kDocTrim, and inner runs become one blank
inline constexpr std::uint32_t kDocStreams = kDocStreamRead | kDocStreamWrite | kDocStreamThird;

// Types of a node: what the scanner returns and what DocumentState::nodeType contains.
inline constexpr std::int32_t kNodeEndTag = 0; // in the scanner; as a document's node: none
inline constexpr std::int32_t kNodeElement = 1;
inline constexpr std::int32_t kNodeText = 2;
inline constexpr std::int32_t kNodeSpace = 4;
inline constexpr std::int32_t kNodeCdata = 8;
inline constexpr std::int32_t kNodeInstruction = 16;
inline constexpr std::int32_t kNodeComment = 32;
inline constexpr std::int32_t kNodeDocType = 64;
inline constexpr std::int32_t kNodeLoneEndTag = 128;
inline constexpr std::int32_t kNodeError = 0x8000; // in stream reading
inline constexpr std::int32_t kNodeScanError = -1;
inline constexpr std::int32_t kNodeEndOfText = -2;

// The longest text, in units: offsets and lengths are 32 bits with a sign.
inline constexpr std::size_t kLongestText = 0x7FFFFFFF;
// The longest tags, in units, that an element's record can describe.
inline constexpr std::uint32_t kLongestStartTag = 0x3FFFFF; // 22 bits
inline constexpr std::uint32_t kLongestEndTag = 0x3FF;      // 10 bits

// What ends a line that the library writes.
inline constexpr std::wstring_view kLineEnd = L"\r\n";

} // namespace ObLibX
