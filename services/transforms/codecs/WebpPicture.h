// WebP pictures. The library decodes and codes whole pictures only, so the limit for memory counts.
// Kept: lossy or lossless, alpha, profile, EXIF and XMP.
#pragma once

#include <memory>

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/Raster.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

struct WebpForm {
    PictureSize size;
    bool isAnimated = false;
    bool isLossless = false;
};

// Each throws PictureFailure; ShrinkWebp uses a second thread.
WebpForm WebpFormOf(PictureSource& source, const PictureControl& control);
void ShrinkWebp(PictureSource& source, PictureTarget& target, const ShrinkStep& step,
                const PictureControl& control);

// The decoded rows, RGB or RGBA, of a file in memory, for a conversion. Throws PictureFailure.
std::unique_ptr<RowReader> OpenWebpRows(const PictureBytes& file, const PictureControl& control);
// A chunk of the file by its name of four letters, empty when there is none.
PictureBytes WebpChunk(const PictureBytes& file, const char* name);

} // namespace transforms
