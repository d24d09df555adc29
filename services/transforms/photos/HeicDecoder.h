// HEIC photos, by the library in the DLL beside the program.
#pragma once

#include <optional>
#include <string>

#include "services/transforms/photos/PhotoColours.h"
#include "services/transforms/raster/PictureControl.h"

namespace transforms {

// The primary picture, put together from its tiles, cropped, turned and mirrored as the container
// asks: the orientation in the EXIF data is then a remark about the camera, and is not followed.
// The numbers of a picture's colours become a profile where it has none. Nothing when the library
// isn't there. Throws PictureFailure, Unsupported for a picture that the library can't decode.
std::optional<DecodedPhoto> DecodeHeic(PictureSource& source, const std::wstring& libraryPath,
                                       const PictureControl& control);

// The size of that picture, turned, by the container alone. Nothing also for a picture that the
// library can't open. Throws PictureFailure.
std::optional<PictureSize> HeicSize(PictureSource& source, const std::wstring& libraryPath,
                                    const PictureControl& control);

} // namespace transforms
