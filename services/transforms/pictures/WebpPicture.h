// WebP pictures. The library decodes and codes whole pictures only, so the limit for memory counts.
// Kept: lossy or lossless, alpha, profile, EXIF and XMP.
#pragma once

#include "services/transforms/pictures/PictureControl.h"
#include "services/transforms/pictures/PictureFile.h"
#include "services/transforms/pictures/ShrinkStep.h"

namespace transforms {

struct WebpForm {
    PictureSize size;
    bool isAnimated = false;
};

// Each throws PictureFailure; ShrinkWebp uses a second thread.
WebpForm WebpFormOf(PictureSource& source, const PictureControl& control);
void ShrinkWebp(PictureSource& source, PictureTarget& target, const ShrinkStep& step,
                const PictureControl& control);

} // namespace transforms
