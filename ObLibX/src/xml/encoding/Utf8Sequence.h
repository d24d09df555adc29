// The UTF-8 decoder that conversion, detection and the search for a boundary share.
#pragma once

#include <cstdint>

namespace ObLibX {

// What stands at a place of a byte text.
struct Utf8Sequence {
    enum class Kind {
        Whole, // a character
        Bad,   // no character; `length` bytes belong to the bad sequence
        Cut,   // the text ends before the character does
    };
    Kind kind;
    std::int32_t length; // bytes; at least 1
    std::uint32_t value; // of a whole one
};

// Reads the sequence at `bytes`; `left` bytes, at least 1, are there.
//
// Forgiving on purpose: a lead byte is judged by the three bits 5, 4 and 3 only, so a stray
// continuation byte leads a sequence too (0x80 to 0x9F one of two bytes), and of a continuation
// byte only the top bit is tested.
constexpr Utf8Sequence ReadUtf8(const std::uint8_t* bytes, std::int32_t left) {
    using Kind = Utf8Sequence::Kind;
    const std::uint8_t lead = bytes[0];
    if ((lead & 0x80) == 0) {
        return {Kind::Whole, 1, lead};
    }
    const std::int32_t length = (lead & 0x20) == 0   ? 2
                                : (lead & 0x10) == 0 ? 3
                                : (lead & 0x08) == 0 ? 4
                                                     : 0;
    if (length == 0) {
        return {Kind::Bad, 1, 0};
    }
    std::uint32_t value = lead & (0x7FU >> length);
    for (std::int32_t i = 1; i < length; ++i) {
        if (i == left) {
            return {Kind::Cut, i, 0};
        }
        if ((bytes[i] & 0x80) == 0) {
            return {Kind::Bad, i, 0};
        }
        value = value << 6 | (bytes[i] & 0x3F);
    }
    return {Kind::Whole, length, value};
}

} // namespace ObLibX
