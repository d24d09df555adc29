// The values inside EXIF data that change with the pixels. Every form of picture may carry such
// data, which begin with their byte order. Data that aren't as they should be are never changed.
#pragma once

#include <cstdint>
#include <span>

#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

// How a picture is shown: 1 as it is stored, 2 to 8 mirrored and turned as EXIF counts it.
inline constexpr std::uint16_t kUprightOrientation = 1;

// Sets the size that EXIF data names, where they name one.
void SetExifSize(std::span<std::uint8_t> exif, PictureSize size) noexcept;

// 1 to 8; 1 where the data name none or another number.
std::uint16_t ExifOrientation(std::span<const std::uint8_t> exif) noexcept;

// Sets the orientation, where the data name one.
void SetExifOrientation(std::span<std::uint8_t> exif, std::uint16_t orientation) noexcept;

// Removes the thumbnail, which would still show the picture as it was before: its bytes become
// zeros, and no directory names it.
void DropExifThumbnail(std::span<std::uint8_t> exif) noexcept;

} // namespace transforms
