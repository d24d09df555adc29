// JPEG pictures as rows of pixels, for a conversion.
#pragma once

#include <memory>

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/Raster.h"

namespace transforms {

// Grey, RGB or, of four channels, ink that is 0 where there is none.
struct JpegPixels {
    std::unique_ptr<RowReader> rows;
    PictureBytes profile;     // empty for none
    unsigned orientation = 1; // as in EXIF, 1 to 8
};

// `source` and `control` must outlive the rows. Throws PictureFailure.
JpegPixels OpenJpegRows(PictureSource& source, const PictureControl& control);

} // namespace transforms
