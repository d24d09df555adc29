// What kind of photo a file is, by its first bytes and never by its name.
#pragma once

#include "services/transforms/raster/PictureFile.h"

namespace transforms {

// Each kind is one bit, so that a set of them is a number.
enum class PhotoKind : unsigned {
    None = 0, // not converted: JPEG, PNG, GIF and what is no picture
    Heic = 1,
    Avif = 2,
    Webp = 4,
    Tiff = 8,
    Bmp = 16,
    JpegXr = 32,
    Raw = 64, // what a camera's sensor saw
};
inline constexpr unsigned kAllPhotoKinds = 127;

struct PhotoForm {
    PhotoKind kind = PhotoKind::None;
    bool isSequence = false; // moving pictures in a container for photos; these pass
};

// Reads the beginning of the file, and of a TIFF file the first directory: raw photos of many
// cameras look like TIFF files whose only picture is a thumbnail. Throws PictureFailure.
PhotoForm PhotoFormOf(PictureSource& source);

} // namespace transforms
