// The requests about pictures.
#pragma once

#include <optional>

#include "services/transforms/WorkChannel.h"
#include "services/transforms/raster/PictureOutcome.h"

namespace transforms {

// Resize: writes the picture into the target, smaller, unless it passes. Results as for CarryOut.
std::optional<WorkEnd> Resize(const WorkRequest& request, WorkChannel& channel);

// The last reply of a request by the outcome of work on a picture; `size` is what is in the target.
// Nothing for Cancelled: the manager no longer reads.
std::optional<WorkEnd> EndOfPicture(PictureOutcome outcome, std::uint64_t size);

} // namespace transforms
