// Shrinks JPEG pictures plane by plane, as they are coded: no colour is converted and no subsampled
// colour plane is blown up and shrunk again, so that greyscale, colour and CMYK are the same work.
// Kept: sampling, colour space, profile, orientation and all other marker segments, the coarser of
// both quantisations.
#pragma once

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

// The size in the file's header. Throws PictureFailure.
PictureSize JpegSize(PictureSource& source, const PictureControl& control);

// Writes the shrunk picture; it is coded anew even if the step leaves its size. Uses a second
// thread. Throws PictureFailure.
void ShrinkJpeg(PictureSource& source, PictureTarget& target, const ShrinkStep& step,
                const PictureControl& control);

} // namespace transforms
