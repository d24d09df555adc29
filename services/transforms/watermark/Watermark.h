// A watermark: where it is, how strong it is, and how its size follows from the picture's.
#pragma once

#include <cstdint>

#include "services/transforms/raster/Stamp.h"

namespace transforms {

enum class WatermarkPlace { TopLeft, TopRight, BottomLeft, BottomRight, Centre };

struct WatermarkLook {
    WatermarkPlace place = WatermarkPlace::BottomRight;
    unsigned opacity = 60; // percent, 1 to 100
};

inline constexpr std::uint32_t kLeastLetter = 7; // pixels; smaller letters can't be read

// How high letters are in a picture, in pixels, before they are made to fit: larger in the centre
// than in a corner. 0 where a picture is too small for a watermark that anybody could read.
std::uint32_t LetterHeight(PictureSize shown, WatermarkPlace place) noexcept;

// What the drawn watermark may take of the picture at most.
PictureSize LargestWatermark(PictureSize shown) noexcept;

// Moves the stamp, whose size is set, to its place, with a margin of half a letter's height in a
// corner; and makes it as transparent as it is to be.
void Place(PlacedStamp& stamp, PictureSize shown, const WatermarkLook& look);

} // namespace transforms
