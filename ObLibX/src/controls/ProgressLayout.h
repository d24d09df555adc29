// How much of a progress bar is filled: plain numbers.
#pragma once

#include <cstdint>

#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

// The filled pixels of a bar of `length`, by the high limit alone; none for an empty range.
std::int32_t FilledLength(std::int32_t length, std::int32_t position, std::int32_t highLimit);

// A block that moves along the bar, again and again: half as long as the bar.
struct Marquee {
    std::int32_t start = 0; // may be before the bar
    std::int32_t end = 0;   // may be after it

    // The place after one more tick.
    [[nodiscard]] Marquee Moved(std::int32_t length) const;
    bool operator==(const Marquee&) const = default;
};

// What of `bar` is filled from `start` to `end`, counted from its left or its top.
PixelRect FilledPart(const PixelRect& bar, bool isVertical, std::int32_t start, std::int32_t end);

} // namespace ObLibX
