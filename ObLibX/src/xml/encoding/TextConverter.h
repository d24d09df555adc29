// Text from one encoding to another.
#pragma once

#include <cstdint>
#include <string>

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

    // Converts `source`, which is in fromEncoding, into `destination`. A null destination, and a
    // capacity of 0, only count. Gives the length in destination units and leaves it in
    // destinationCapacity. Names are looked up by LookupCodePage; an unknown one is the system's
    // default.
    //
    // Never fails visibly: a pair that has no conversion, and a page that the system doesn't know,
    // give the length 0. Never writes over the capacity. When that is too small, the conversions
    // of this library stop behind the last character that fits; the system's give 0, and for a page
    // a text that needs just one byte more comes without its last byte. usedDefault is set anew by
    // each call. Throws std::bad_alloc, and only where it goes from page to page or the capacity is
    // too small.
    std::int32_t Convert(void* destination, const std::wstring& toEncoding);
};

// The code page that a name stands for in a conversion: LookupCodePage's, or 0, the system's
// default, when that doesn't know it.
std::int32_t ConversionPage(const std::wstring& encoding);
// Bytes of one code unit in text of that page: 4, 2 or 1.
std::int32_t CodeUnitSize(std::int32_t page);

} // namespace ObLibX
