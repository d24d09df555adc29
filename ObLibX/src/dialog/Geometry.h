// Points and rectangles in pixels, for arithmetic that sees no window.
#pragma once

#include <algorithm>
#include <cstdint>

namespace ObLibX {

struct PixelPoint {
    std::int32_t x = 0;
    std::int32_t y = 0;
    bool operator==(const PixelPoint&) const = default;
};

// Right and bottom are the first pixels outside.
struct PixelRect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;

    [[nodiscard]] std::int32_t Width() const { return right - left; }
    [[nodiscard]] std::int32_t Height() const { return bottom - top; }
    [[nodiscard]] bool IsEmpty() const { return right <= left || bottom <= top; }
    [[nodiscard]] PixelPoint Centre() const { return {left + Width() / 2, top + Height() / 2}; }
    [[nodiscard]] bool Contains(PixelPoint point) const {
        return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
    }
    [[nodiscard]] bool Contains(const PixelRect& other) const {
        return other.left >= left && other.top >= top && other.right <= right &&
               other.bottom <= bottom;
    }
    bool operator==(const PixelRect&) const = default;
};

} // namespace ObLibX
