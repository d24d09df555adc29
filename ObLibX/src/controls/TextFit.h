// How a static text comes to fit its window: by a smaller font, or a larger window.
#pragma once

#include <cstdint>
#include <functional>

namespace ObLibX {

struct TextSize {
    std::int32_t width = 0; // pixels
    std::int32_t height = 0;
    bool operator==(const TextSize&) const = default;
};

struct TextFit {
    TextSize window;
    std::int32_t fontSize = 0; // points
    bool operator==(const TextFit&) const = default;
};

// The size that the text takes in a font of `fontSize` points: as the window breaks it into lines,
// or with `isWrapped` false only at its own line ends.
using MeasureText = std::function<TextSize(std::int32_t fontSize, bool isWrapped)>;

// What becomes of a text in a window of this size and font, on a screen of `dpi`.
//
// A font of 9 points or less stays. With it the window gets at most MulDiv(3, dpi, 96) pixels
// wider, above 96 dpi only, and never taller. A larger font loses points down to 9 until the text
// is narrow enough without wrapping; then the window gets as tall as the text needs, and 2 more.
// Any thread; what `measure` throws passes.
TextFit FitText(const TextFit& now, std::int32_t dpi, const MeasureText& measure);

} // namespace ObLibX
