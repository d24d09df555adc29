// BMP pictures, row by row, in the file's order: bottom-up pictures stay bottom-up. Kept: the
// header with its resolution and profile, 24 or 32 bits, alpha. A grey palette becomes 8 bits of
// grey, any other 24 bits. Packed pixels (RLE) and 16 bits aren't worked on.
#pragma once

#include <memory>

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/Raster.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

// Each throws PictureFailure; ShrinkBmp uses a second thread.
PictureSize BmpSize(PictureSource& source, const PictureControl& control);
void ShrinkBmp(PictureSource& source, PictureTarget& target, const ShrinkStep& step,
               const PictureControl& control);

// The rows from the top down, in grey, RGB or RGBA, and the profile, for a conversion. `source`
// must outlive the rows. Throws PictureFailure.
struct BmpPixels {
    std::unique_ptr<RowReader> rows;
    PictureBytes profile;
};
BmpPixels OpenBmpPixels(PictureSource& source, const PictureControl& control);

} // namespace transforms
