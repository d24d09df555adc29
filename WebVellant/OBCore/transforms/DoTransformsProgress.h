// The worker thread of a run: the stages, while the progress dialog stays live.
#pragma once

#include <windows.h>

#include "OBCore/transforms/TransformRun.h"

namespace obcore {

// Message to the progress dialog with the run as its lParam: the dialog's thread runs the final
// stage before the message returns.
inline constexpr UINT kFinalStageMessage = WM_USER + 1;

// Starts the worker on a thread of its own; on the dialog's thread. The worker shares the run,
// keeps this module loaded while it runs, and ends the dialog with the run's Result. Nobody joins
// it. False when the thread can't be made.
bool StartTransformsWorker(TransformRun& run);

} // namespace obcore
