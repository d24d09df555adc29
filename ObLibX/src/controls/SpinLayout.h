// Where a spin control and its two buttons are: plain numbers.
#pragma once

#include <cstdint>

#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

enum class SpinPart : std::int32_t { None = 0, Up = 1, Down = 2 };

// Inside the frame of its edit, near its right edge, as high as the frame; as wide as before.
PixelRect PlaceSpin(const PixelRect& frame, std::int32_t width);

struct SpinLayout {
    PixelRect up;
    PixelRect down; // begins two pixels lower than `up` ends
};

// `border`: the pixels of the frame that is painted around both.
SpinLayout LayOutSpin(const PixelRect& client, std::int32_t border);

SpinPart HitSpin(const SpinLayout& layout, PixelPoint point);

// The height of the largest arrow in a button: less than the button's height less 4.
std::int32_t MostSpinArrow(const SpinLayout& layout);

} // namespace ObLibX
