// A picture's file as what a watermark is made of: upright, in sRGB, with alpha.
#pragma once

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

// Red, green, blue and how opaque, 8 bits each, the colours not multiplied by the fourth.
struct StampPixels {
    PictureSize size;
    PictureBytes pixels;
};

// JPEG, PNG, TIFF of one page, WebP and BMP. Deeper samples become 8 bits, inks and Lab sRGB, and
// colours of another profile those of sRGB. Throws PictureFailure: Unsupported for another kind,
// an animation and a file of many pages; TooLarge above 50 million pixels.
StampPixels ReadStampFile(PictureSource& source, const PictureControl& control);

} // namespace transforms
