// The request that converts a photo.
#pragma once

#include <optional>

#include "services/transforms/WorkChannel.h"
#include "services/transforms/photos/ConvertPhoto.h"
#include "services/transforms/raster/PictureFile.h"

namespace transforms {

// ConvertPhoto: writes a JPEG or PNG of the photo into the target, unless it passes. HEIC photos
// need the library beside the program, or a codec of the system. Results as for CarryOut.
std::optional<WorkEnd> ConvertPhotoFile(const WorkRequest& request, WorkChannel& channel);

// What the settings ask for, with the library beside the program. Nothing for values that the
// contract lacks.
std::optional<PhotoRequest> PhotoRequestOf(const obcontract::WorkPhoto& settings);

// Whether the file is a photo of one of these kinds. False when it can't be read.
bool IsPhotoOf(PictureSource& source, unsigned kinds);

} // namespace transforms
