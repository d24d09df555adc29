// The request that makes a PDF of a picture.
#pragma once

#include <optional>

#include "services/transforms/WorkChannel.h"

namespace transforms {

// PictureToPdf: writes a PDF of the picture into the target, unless it passes. HEIC photos need the
// library beside the program, or a codec of the system. Results as for CarryOut.
std::optional<WorkEnd> MakePdf(const WorkRequest& request, WorkChannel& channel);

} // namespace transforms
