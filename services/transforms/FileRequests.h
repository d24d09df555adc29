// The table of what the work process does: a function for each kind of request.
#pragma once

#include <optional>

#include "services/transforms/CombineWork.h"
#include "services/transforms/FitWork.h"
#include "services/transforms/WorkChannel.h"

namespace transforms {

// What lasts between the requests that belong together. The channel outlives it.
struct SeriesWork {
    explicit SeriesWork(WorkChannel& channel) noexcept : fit(channel), combine(channel) {}
    FitWork fit;
    CombineWork combine;
};

// Carries the request out, and sends what isn't its last reply. Returns that one, which the caller
// sends once the files are closed. Nothing when the manager no longer reads and for settings that
// aren't valid; the process then ends. Throws std::bad_alloc alone.
// `series` lasts as long as the process.
std::optional<WorkEnd> CarryOut(WorkRequest& request, WorkChannel& channel, SeriesWork& series);

} // namespace transforms
