// Where the parts of a scroll bar and of a slider are, which part a point hits, and which value a
// thumb's place means: plain numbers, no window.
#pragma once

#include <cstdint>

#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

enum class ScrollOrientation : std::int32_t { Horizontal = 0, Vertical = 1 };

// What a bar scrolls over. Any values are allowed, also a range upside down; a page below 0 counts
// as none.
struct ScrollRange {
    std::int32_t minimum = 0;
    std::int32_t maximum = 100;
    std::int32_t page = 0;
};

// No thumb of a scroll bar is shorter, unless the track is.
inline constexpr std::int32_t kLeastThumbLength = 15;

// How many values a thumb passes on its way: maximum - page - minimum + 1; below 1 for a page
// larger than the range.
std::int64_t ValueCount(const ScrollRange& range);
// The same for a bar whose thumb ends at the maximum, whatever its page: maximum - minimum.
std::int64_t WholeValueCount(const ScrollRange& range);
// Whether there is more than one position, as the system counts them: a page of 1 is as none.
bool CanScroll(const ScrollRange& range);

// value * numerator / denominator, rounded to the nearest, halves away from 0; -1 for a denominator
// of 0, as the system's own call. The product must fit 64 bits.
std::int64_t MultiplyDivide(std::int64_t value, std::int64_t numerator, std::int64_t denominator);

// The thumb of a scroll bar on a track of so many pixels. Without a page it is
// `lengthWithoutPage`. Never below kLeastThumbLength, never longer than the track.
std::int32_t ThumbLength(std::int32_t trackLength, const ScrollRange& range,
                         std::int32_t lengthWithoutPage);

// How far the thumb has moved, 0 to `travel` pixels, at a position of a range with `count` values.
std::int32_t ThumbTravel(std::int32_t travel, std::int64_t count, std::int32_t minimum,
                         std::int32_t position);

// The value at `pixel` of the travel: minimum to minimum + count, and what fits 32 bits. Without
// travel it is `position`.
std::int32_t ValueAtTravel(std::int32_t pixel, std::int32_t travel, std::int64_t count,
                           std::int32_t minimum, std::int32_t position);

// The parts of a bar in its client coordinates. Lengths are along the bar.
struct ScrollLayout {
    std::int32_t arrowLength = 0; // 0: without arrows
    std::int32_t trackLength = 0;
    std::int32_t thumbLength = 0;
    std::int32_t thumbOffset = 0; // start of the thumb
    PixelRect upArrow;            // or left
    PixelRect downArrow;          // or right
    PixelRect track;
    PixelRect thumbSpace; // where the thumb moves: as thick as the thumb, as long as the track
    PixelRect pageBefore; // thumbSpace before the thumb
    PixelRect pageAfter;
    PixelRect thumb;

    [[nodiscard]] std::int32_t Travel() const { return trackLength - thumbLength; }
};

// What a bar is made from: its size and the lengths that the system gives.
struct ScrollMetrics {
    ScrollOrientation orientation = ScrollOrientation::Vertical;
    PixelPoint size;                   // of the client area
    std::int32_t arrowLength = 0;      // halved as far as both arrows need it
    std::int32_t thumbWithoutPage = 0; // pixels
};

// A scroll bar at a position.
ScrollLayout LayOutScrollBar(const ScrollMetrics& metrics, const ScrollRange& range,
                             std::int32_t position);

// A slider: a thumb as thick as the client area on a thin track in its middle, no arrows.
struct SliderMetrics {
    ScrollOrientation orientation = ScrollOrientation::Horizontal;
    PixelPoint size;                 // of the client area
    std::int32_t thumbLength = 0;    // pixels
    std::int32_t trackThickness = 0; // pixels
};
ScrollLayout LayOutSlider(const SliderMetrics& metrics, const ScrollRange& range,
                          std::int32_t position);

// Moves the thumb, and the parts of its space beside it, to start at `thumbOffset`, which is
// limited to the track.
void MoveThumb(ScrollLayout& layout, ScrollOrientation orientation, std::int32_t thumbOffset);

// The value that the thumb's place means; `count` as ValueCount or WholeValueCount.
std::int32_t ValueFromPixel(const ScrollLayout& layout, std::int32_t pixel, std::int64_t count,
                            std::int32_t minimum, std::int32_t position);

enum class ScrollPart : std::int32_t {
    None = 0,
    UpArrow = 1,
    PageBefore = 2,
    Thumb = 3,
    PageAfter = 4,
    DownArrow = 5,
};
ScrollPart HitTest(const ScrollLayout& layout, PixelPoint point);

// The page of a slider, and its step for keys, by its range.
std::int32_t SliderPage(const ScrollRange& range);
std::int32_t SliderStep(const ScrollRange& range);

// `position` moved by `distance` and limited to the range; of a range upside down to its minimum.
std::int32_t MovedWithin(const ScrollRange& range, std::int32_t position, std::int64_t distance);

} // namespace ObLibX
