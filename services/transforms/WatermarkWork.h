// The request that lays a text over a picture or the pages of a PDF.
#pragma once

#include <optional>

#include "services/transforms/WorkChannel.h"

namespace transforms {

// Watermark: writes the target, unless the file passes: an animation, a file of many pages, and
// what is neither a picture nor a PDF. Results as for CarryOut.
std::optional<WorkEnd> AddWatermark(const WorkRequest& request, WorkChannel& channel);

// Lays the request's picture over a picture or over each page of a PDF. As AddWatermark.
std::optional<WorkEnd> AddPictureWatermark(const WorkRequest& request, WorkChannel& channel);

} // namespace transforms
