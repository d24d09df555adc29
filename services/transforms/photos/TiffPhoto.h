// TIFF pictures, of every form that the TIFF library reads.
#pragma once

#include <optional>

#include "services/transforms/codecs/TiffLibrary.h"
#include "services/transforms/photos/PhotoColours.h"
#include "services/transforms/raster/PictureControl.h"

namespace transforms {

// The open page of a file, without EXIF data. Grey, colour, CMYK and Lab of
// 8 and 16 bits come row by row; palettes, fax pages and other forms whole, as the library shows
// them. `file` must outlive the photo and keep the page open. Throws PictureFailure.
DecodedPhoto DecodeTiffPage(TiffFile& file, const PictureControl& control);
// Whether DecodeTiffPage reads pages of this form. Reads no pixels. Throws PictureFailure.
bool IsTiffPageServed(TiffFile& file, const PictureControl& control);

// Nothing for a file of many pages. `source` must outlive the photo. Throws PictureFailure.
std::optional<DecodedPhoto> DecodeTiff(PictureSource& source, const PictureControl& control);

} // namespace transforms
