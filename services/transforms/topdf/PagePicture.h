// A decoded picture on its way into a PDF.
#pragma once

#include <memory>
#include <optional>

#include "services/transforms/photos/PhotoColours.h"
#include "services/transforms/topdf/PageLayout.h"

namespace transforms {

struct PagePicture {
    // From the top. Where samples have fewer than 8 bits, several are in a byte, the first one
    // highest, and the rows' form counts bytes: one channel of 8 bits.
    std::unique_ptr<RowReader> rows;
    PictureSize size; // in pixels
    unsigned bits = 8;
    PhotoSamples samples = PhotoSamples::Rgb;
    PictureBytes palette;               // red, green and blue of each index; empty without
    std::optional<unsigned> clearIndex; // the index of pixels that nobody sees
    bool isInverted = false;            // grey and inks: 0 is white, or all ink
    bool zeroAlphaIsUnset = false;      // as in DecodedPhoto
    PictureBytes profile;               // empty for none; left out if it isn't one for the samples
    unsigned orientation = 1;           // as in EXIF, 1 to 8
    Resolution resolution;
};

} // namespace transforms
