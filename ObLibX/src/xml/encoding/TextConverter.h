// Text from one encoding to another: the conversion, where a block of bytes may end without a
// character being cut in two, and the encoding that a text declares.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ObLibX {

// Lengths are in code units of the encoding in question: bytes, or 16- or 32-bit units in this
// machine's byte order. One thread.
struct TextConverter {
    std::wstring toEncoding;
    std::wstring fromEncoding;
    const void* source = nullptr;         // not owned
    std::int32_t sourceLength = 0;        // source units
    std::int32_t destinationCapacity = 0; // destination units; the length written comes back in it
    std::int32_t usedDefault = 0;         // set when a character had to be replaced

    // Converts `source`, which is in fromEncoding, into `destination`. With a null destination, and
    // with a capacity of 0, it only counts. Returns the length in destination units and leaves it
    // in destinationCapacity. Names are looked up by LookupCodePage; an unknown name is the
    // system's default. Each call sets usedDefault anew.
    //
    // Never fails visibly: the length is 0 for a pair that has no conversion and for a page that
    // the system doesn't know. Never writes past the capacity. When the capacity is too small, the
    // conversions of this library stop after the last character that fits. Those of the system give
    // 0; into a page, a text that needs one byte more is written without its last byte. Throws
    // std::bad_alloc, and only from page to page or when the capacity is too small.
    std::int32_t Convert(void* destination, const std::wstring& toEncoding);
};

// The code page of a name in a conversion: LookupCodePage's, or 0, the system's default, for an
// unknown name.
std::int32_t ConversionPage(const std::wstring& encoding);
// Bytes of one code unit in text of that page: 4, 2 or 1.
std::int32_t CodeUnitSize(std::int32_t page);

// How many bytes at the end of the converter's source must be given back so that no character of
// its fromEncoding is cut in two. True when a boundary was found; false, with 0, when there is
// none. In UTF-16 half a surrogate pair is given back even when the source is nothing else. Throws
// std::bad_alloc.
bool FindCharBoundary(const TextConverter& converter, std::int32_t& outBytesToGiveBack);

// What the text's XML declaration or an HTML meta element of it declares; empty when it declares
// none. Linear. Throws std::bad_alloc.
std::wstring GetDeclaredEncoding(std::wstring_view text);

// ---- The UTF-8 decoder that conversion, detection and the search for a boundary share

// A character of a byte text, or what is there in its place.
struct Utf8Sequence {
    enum class Kind {
        Whole, // a character
        Bad,   // no character; `length` bytes belong to the bad sequence
        Cut,   // the text ends before the character does
    };
    Kind kind;
    std::int32_t length; // bytes; at least 1
    std::uint32_t value; // the code point of a whole one
};

// Reads the sequence at `bytes`, a text of `left` bytes, at least 1.
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
