// EXIF data for a converted photo: when and with what it was taken, written anew.
#pragma once

#include <span>

#include "services/transforms/photos/TiffDirectories.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

// The EXIF data of a file for a picture of this size whose pixels are turned already:
// orientation 1. It keeps camera, date, settings, place, author and resolution. Left out are the
// thumbnail, which isn't turned, and maker notes, which point to places of the old file. Empty when
// the file has none. Throws PictureFailure.
PictureBytes CarriedExif(const TiffDirectories& from, PictureSize size);

// The same for EXIF data in memory, which begin with the byte order. Damaged data are carried as
// far as they are whole.
PictureBytes CarriedExif(std::span<const std::uint8_t> from, PictureSize size);

// The orientation that EXIF data name, 1 to 8; 1 when they name none.
unsigned ExifOrientation(const TiffDirectories& from);

// EXIF data without the mark that precedes them in some containers.
std::span<const std::uint8_t> WithoutExifMark(std::span<const std::uint8_t> bytes) noexcept;

} // namespace transforms
