// The requests about personal data.
#pragma once

#include <optional>

#include "services/transforms/WorkChannel.h"

namespace transforms {

// Clean: writes the source without personal data into the target, unless there is none to remove.
// CheckClean: reports what a clean would remove. Both send a finding for each kind of data. Results
// as for CarryOut.
std::optional<WorkEnd> Clean(const WorkRequest& request, WorkChannel& channel);

} // namespace transforms
