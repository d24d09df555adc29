// The request that asks what a file takes in a zip.
#pragma once

#include <optional>

#include "services/transforms/WorkChannel.h"

namespace transforms {

// Measure: compresses the file on trial, as the zip will, and reports the bytes; nothing is
// written. The zip makes at most as many of it. Results as for CarryOut.
std::optional<WorkEnd> Measure(const WorkRequest& request, WorkChannel& channel);

} // namespace transforms
