// What tests ask about the pixels of a window.
#pragma once

#include <windows.h>

#include "ObLibX/src/dialog/Geometry.h"

namespace obtest {

// For a class with At(x, y), which is the base's `Pixels`.
template <class Pixels>
class PixelQuestions {
public:
    // How many pixels of a rectangle have a colour.
    [[nodiscard]] int Count(const ObLibX::PixelRect& rect, COLORREF color) const {
        const auto& pixels = static_cast<const Pixels&>(*this);
        int count = 0;
        for (int y = rect.top; y < rect.bottom; ++y) {
            for (int x = rect.left; x < rect.right; ++x) count += pixels.At(x, y) == color ? 1 : 0;
        }
        return count;
    }
    [[nodiscard]] bool IsAll(const ObLibX::PixelRect& rect, COLORREF color) const {
        return Count(rect, color) == rect.Width() * rect.Height();
    }
    // Whether the outermost pixels of a rectangle all have a colour.
    [[nodiscard]] bool IsFramed(const ObLibX::PixelRect& rect, COLORREF color) const {
        return IsAll({rect.left, rect.top, rect.right, rect.top + 1}, color) &&
               IsAll({rect.left, rect.bottom - 1, rect.right, rect.bottom}, color) &&
               IsAll({rect.left, rect.top, rect.left + 1, rect.bottom}, color) &&
               IsAll({rect.right - 1, rect.top, rect.right, rect.bottom}, color);
    }
};

} // namespace obtest
