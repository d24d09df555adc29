// The request that lays a text over a picture or the pages of a PDF.
#pragma once

#include <memory>
#include <optional>
#include <variant>

#include "services/transforms/PictureWatch.h"
#include "services/transforms/WorkChannel.h"
#include "services/transforms/raster/Stamp.h"

namespace transforms {

// Watermark: writes the target, unless the file passes: an animation, a file of many pages, and
// what is neither a picture nor a PDF. Results as for CarryOut.
std::optional<WorkEnd> AddWatermark(const WorkRequest& request, WorkChannel& channel);

// Lays the request's picture over a picture or over each page of a PDF. As AddWatermark.
std::optional<WorkEnd> AddPictureWatermark(const WorkRequest& request, WorkChannel& channel);

// The stamp for pictures that the settings of Watermark ask for. Null for values that the contract
// lacks.
std::unique_ptr<Stamp> TextStampOf(const WorkRequest& request);

// A stamp, or how its request ends, as for CarryOut.
using StampOrEnd = std::variant<std::unique_ptr<Stamp>, std::optional<WorkEnd>>;

// The same for PictureWatermark, whose picture is read.
StampOrEnd PictureStampOf(const WorkRequest& request, PictureWatch& watch);

} // namespace transforms
