// The request that makes PDFs of other programs equal for equal documents.
#pragma once

#include <optional>

#include "services/transforms/WorkChannel.h"

namespace transforms {

// RemoveDates: writes the PDF into the target without what differs from run to run. Nothing when
// the manager no longer reads and for settings that aren't valid. Throws std::bad_alloc alone.
std::optional<WorkEnd> RemoveDates(const WorkRequest& request, WorkChannel& channel);

} // namespace transforms
