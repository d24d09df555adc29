// Decoded photos, and their samples brought to what JPEG and PNG have: 8 bits of grey or RGB.
#pragma once

#include <memory>

#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/Raster.h"

namespace transforms {

// What the samples of a row mean, alpha not counted.
enum class PhotoSamples {
    Grey,
    WhiteIsZero, // grey
    Rgb,
    Cmyk,      // 0 is no ink
    Lab,       // lightness, then two colours of which the middle is none
    SignedLab, // of the two colours 0 is none
};

struct DecodedPhoto {
    std::unique_ptr<RowReader> rows; // from the top
    PhotoSamples samples = PhotoSamples::Rgb;
    // The EXIF orientation of the rows, 1 when they are turned already.
    unsigned orientation = 1;
    // The file's colours have full resolution; those of most cameras have half of it.
    bool hasFineColours = true;
    // A picture of nothing but transparent pixels is one whose alpha was left unset.
    bool zeroAlphaIsUnset = false;
    PictureBytes profile; // empty for sRGB
    PictureBytes exif;    // for the result; empty for none
};

// Rows of 8 bits: grey, RGB, and either with alpha that isn't multiplied.
struct PlainPhoto {
    std::unique_ptr<RowReader> rows;
    PictureBytes profile; // of these rows; empty when it was applied or doesn't fit them
};

// CMYK and Lab become sRGB by the photo's profile. Takes rows and profile from `photo`. Throws
// PictureFailure.
PlainPhoto PlainPhotoOf(DecodedPhoto& photo);

} // namespace transforms
