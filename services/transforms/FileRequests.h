// The table of what the work process does: a function for each kind of request.
#pragma once

#include <optional>

#include "services/transforms/FitWork.h"
#include "services/transforms/WorkChannel.h"

namespace transforms {

// Carries the request out, and sends what isn't its last reply. Returns that one, which the caller
// sends once the files are closed. Nothing when the manager no longer reads and for settings that
// aren't valid; the process then ends. Throws std::bad_alloc alone.
// `fit` lasts as long as the process.
std::optional<WorkEnd> CarryOut(WorkRequest& request, WorkChannel& channel, FitWork& fit);

} // namespace transforms
