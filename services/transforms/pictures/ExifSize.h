// The size of the picture inside EXIF data, which every form of picture may carry.
#pragma once

#include <cstdint>
#include <span>

#include "services/transforms/pictures/ShrinkStep.h"

namespace transforms {

// Sets the size that EXIF data names, where they name one. `exif` begins with the byte order; data
// that aren't as they should be stay as they are.
void SetExifSize(std::span<std::uint8_t> exif, PictureSize size) noexcept;

} // namespace transforms
