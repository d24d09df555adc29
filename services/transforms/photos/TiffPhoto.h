// TIFF pictures of one page, of every form that the TIFF library reads.
#pragma once

#include <optional>

#include "services/transforms/photos/PhotoColours.h"
#include "services/transforms/raster/PictureControl.h"

namespace transforms {

// Nothing for a file of many pages. `source` must outlive the photo. Grey, colour, CMYK and Lab of
// 8 and 16 bits come row by row; palettes, fax pages and other forms whole, as the library shows
// them. Throws PictureFailure.
std::optional<DecodedPhoto> DecodeTiff(PictureSource& source, const PictureControl& control);

} // namespace transforms
