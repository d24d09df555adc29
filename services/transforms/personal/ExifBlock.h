// The block that cameras write into pictures of every format: a small TIFF file without pixels.
#pragma once

#include <cstdint>

#include "services/transforms/personal/Analysis.h"

namespace transforms::personal {

// How a viewer turns the picture: 2 to 8; 1 is upright, which needs no block.
using Orientation = std::uint8_t;
inline constexpr Orientation kUpright = 1;

struct ExifContent {
    Orientation orientation = kUpright; // also when there is none or an unknown one
    FindingCounter found;               // of everything but the orientation; one finding at least
};

// Reads a block from its byte order mark on. A damaged one is read as far as that goes.
ExifContent ReadExif(Bytes block);

// The block that has this orientation and nothing else.
OwnedBytes MinimalExif(Orientation orientation);

// Whether the block is one that MinimalExif makes for an orientation other than upright.
bool IsMinimalExif(Bytes block);

} // namespace transforms::personal
