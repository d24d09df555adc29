// The two results of a conversion.
#pragma once

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/Raster.h"

namespace transforms {

struct PhotoWriting {
    int quality = 92;            // of a JPEG, 1 to 100
    bool hasFineColours = false; // a JPEG whose colours have full resolution
    PictureBytes profile;
    PictureBytes exif; // without the mark that JPEG writes before it
    // The size and stamp of the result, and how coarse a JPEG is at least. Null: the rows' own
    // size, no stamp, the quality above.
    const ShrinkStep* step = nullptr;
};

// Write the rows, which are upright, of 8 bits, grey or RGB, a PNG also with alpha. Use a second
// thread, in which the rows are read. Throw PictureFailure.
void WriteJpegPhoto(RowReader& rows, PictureTarget& target, const PhotoWriting& writing,
                    const PictureControl& control);
void WritePngPhoto(RowReader& rows, PictureTarget& target, const PhotoWriting& writing,
                   const PictureControl& control);

} // namespace transforms
