// Writes nested values in the distinguished encoding (DER).
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

namespace obarchive {

using DerBytes = std::vector<std::uint8_t>;

enum class DerTag : std::uint8_t {
    Integer = 0x02,
    OctetString = 0x04,
    Null = 0x05,
    ObjectId = 0x06,
    Sequence = 0x30,
    Set = 0x31,
    ImplicitPrimitive0 = 0x80, // [0], in place of a primitive value's own tag
    Explicit0 = 0xA0,          // [0], around a value
};

// Tag, length and content.
DerBytes Der(DerTag tag, std::span<const std::uint8_t> content);

// The same; the content is the encoded parts, one after the other.
DerBytes Der(DerTag tag, std::initializer_list<DerBytes> parts);

} // namespace obarchive
