// Threads that nobody waits for.
#pragma once

#include <functional>

namespace providers {

// Runs `work` on a thread of its own, whose exceptions end there. The work owns all that it uses:
// it may hang beyond the end of the session. The module stays loaded until the thread has ended,
// also when its last user frees it meanwhile; the end of the process doesn't wait. False, without
// running it, when the system has no thread left. Throws std::bad_alloc.
bool RunDetached(std::function<void()> work);

} // namespace providers
