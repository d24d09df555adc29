// The table of what the work process does: a function for each kind of request.
#pragma once

#include "services/transforms/WorkChannel.h"

namespace transforms {

// Carries the request out and sends its replies, the last one included. False when the manager no
// longer reads. Throws nothing but std::bad_alloc, which has sent no last reply yet.
bool CarryOut(const WorkRequest& request, WorkChannel& channel);

} // namespace transforms
