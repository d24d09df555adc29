// TIFF pictures of one page, by rows of strips or tiles. Kept: 8 or 16 bits, grey, colour or CMYK,
// alpha, byte order, compression, profile, resolution, orientation, texts, XMP and IPTC. What has
// other depths, palettes, planes apart or more than 16 bits isn't worked on. EXIF data of a TIFF
// are not kept.
#pragma once

#include "services/transforms/pictures/PictureControl.h"
#include "services/transforms/pictures/PictureFile.h"
#include "services/transforms/pictures/ShrinkStep.h"

namespace transforms {

struct TiffForm {
    PictureSize size;
    bool hasManyPages = false;
};

// Each throws PictureFailure; ShrinkTiff uses a second thread.
TiffForm TiffFormOf(PictureSource& source, const PictureControl& control);
void ShrinkTiff(PictureSource& source, PictureTarget& target, const ShrinkStep& step,
                const PictureControl& control);

} // namespace transforms
