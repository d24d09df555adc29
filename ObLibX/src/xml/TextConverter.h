// Text from one encoding to another.
#pragma once

#include <cstdint>
#include <string>

namespace ObLibX {

// Lengths are in code units of the encoding in question: bytes, or 16- or 32-bit units.
struct TextConverter {
    std::wstring toEncoding;
    std::wstring fromEncoding;
    const void* source = nullptr;         // not owned
    std::int32_t sourceLength = 0;        // source units
    std::int32_t destinationCapacity = 0; // destination units; the length written comes back in it
    std::int32_t usedDefault = 0;         // set when a character had to be replaced

    // Converts `source`, which is in fromEncoding, into `destination`; null only counts. Gives the
    // length in destination units. Names are looked up by LookupCodePage; an unknown one is the
    // system's default. Never fails visibly, and never writes over the capacity.
    std::int32_t Convert(void* destination, const std::wstring& toEncoding);
};

// How many bytes at the end of the converter's source must go back so that no character of its
// fromEncoding is cut in two. True when a boundary was found.
bool FindCharBoundary(const TextConverter& converter, std::int32_t& outBytesToGiveBack);

} // namespace ObLibX
