// PNG pictures, row by row; interlaced ones are decoded whole and written without interlacing.
// Kept: depth of 8 or 16 bits, grey or colour, alpha, profile and texts. Palettes and less than 8
// bits become 8 bits a channel, as averages of their colours have no place in them.
#pragma once

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

// Each throws PictureFailure; ShrinkPng uses a second thread.
PictureSize PngSize(PictureSource& source, const PictureControl& control);
void ShrinkPng(PictureSource& source, PictureTarget& target, const ShrinkStep& step,
               const PictureControl& control);

} // namespace transforms
