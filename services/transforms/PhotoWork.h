// The request that converts a photo.
#pragma once

#include <optional>

#include "services/transforms/WorkChannel.h"

namespace transforms {

// ConvertPhoto: writes a JPEG or PNG of the photo into the target, unless it passes. HEIC photos
// need the library beside the program, or a codec of the system. Results as for CarryOut.
std::optional<WorkEnd> ConvertPhotoFile(const WorkRequest& request, WorkChannel& channel);

} // namespace transforms
