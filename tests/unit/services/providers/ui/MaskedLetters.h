// Looks for a password in the memory of this process, for tests of what is left of one.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <iterator>

#include "tests/support/ReadableMemory.h"

namespace obtest {

// The letters under a mask, so that the test itself never has them in one piece.
inline constexpr wchar_t kMask = 0x55;
inline constexpr wchar_t kMasked[] = {L'Q' ^ kMask, L'x' ^ kMask, L'7' ^ kMask, L'v' ^ kMask,
                                      L'k' ^ kMask, L'9' ^ kMask, L'V' ^ kMask, L'u' ^ kMask,
                                      L'3' ^ kMask, L'n' ^ kMask, L'w' ^ kMask, L'h' ^ kMask};

// Volatile, or the compiler may store the plain letters in one piece.
inline wchar_t Letter(std::size_t index) {
    const volatile wchar_t mask = kMask;
    return static_cast<wchar_t>(kMasked[index] ^ mask);
}

inline bool IsAt(const std::uint8_t* at, std::size_t width) {
    for (std::size_t index = 0; index < std::size(kMasked); ++index) {
        if (at[index * width] != static_cast<std::uint8_t>(Letter(index))) return false;
        if (width == 2 && at[index * width + 1] != 0) return false;
    }
    return true;
}

// How often the readable memory of this process contains the letters, `width` bytes each.
inline int TimesInMemory(std::size_t width) {
    int times = 0;
    ForEachReadableRegion([&](const MEMORY_BASIC_INFORMATION& region, const std::uint8_t* at) {
        const auto* const end = at + region.RegionSize;
        for (; at + std::size(kMasked) * width <= end; ++at) times += IsAt(at, width);
    });
    return times;
}

} // namespace obtest
