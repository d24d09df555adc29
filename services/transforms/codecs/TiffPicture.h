// TIFF pictures of one page, by rows of strips or tiles. Kept: 8 or 16 bits, grey, colour or CMYK,
// alpha, byte order, compression, profile, resolution, orientation, texts, XMP and IPTC. What has
// other depths, palettes, planes apart or more than 16 bits isn't worked on. EXIF data of a TIFF
// are not kept.
#pragma once

#include <memory>

#include "services/transforms/codecs/TiffLibrary.h"
#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/Raster.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

struct TiffForm {
    PictureSize size;
    bool hasManyPages = false;
};

// Each throws PictureFailure; ShrinkTiff uses a second thread.
TiffForm TiffFormOf(PictureSource& source, const PictureControl& control);
void ShrinkTiff(PictureSource& source, PictureTarget& target, const ShrinkStep& step,
                const PictureControl& control);

// The rows of the file's first page as they are stored, also of a Lab picture: for a conversion,
// which knows what the samples mean. `file` must outlive them. Throws PictureFailure.
std::unique_ptr<RowReader> OpenTiffRows(TiffFile& file, const PictureControl& control);

} // namespace transforms
