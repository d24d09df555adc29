// The controls of a dialog as the process's description has them.
#pragma once

#include "ObLibX/src/dialog/DialogDescription.h"

namespace ObLibX {

// The list for one dialog, in place of what `controls` had. False when the description, which is
// read at the first need, has no such dialog. On the thread of the dialogs. Throws std::bad_alloc.
bool ReadDialogDescription(std::int32_t dialogId, std::vector<ControlDescription>& controls);

} // namespace ObLibX
