// The table of kinds of photos and what decodes each.
#pragma once

#include <optional>
#include <string>

#include "services/transforms/photos/PhotoColours.h"
#include "services/transforms/photos/PhotoKind.h"
#include "services/transforms/raster/PictureControl.h"

namespace transforms {

// Nothing for what passes as it is: an animation, a file of many pages. `source` must outlive the
// photo. Throws PictureFailure, Unsupported when nothing on this machine decodes the file.
std::optional<DecodedPhoto> DecodePhoto(PhotoKind kind, PictureSource& source,
                                        const std::wstring& heifLibrary,
                                        const PictureControl& control);

} // namespace transforms
