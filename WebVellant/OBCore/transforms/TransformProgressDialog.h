// The dialog that is open while the transforms run.
#pragma once

#include "OBCore/transforms/TransformRun.h"

namespace obcore {

// Opens the dialog modally on the run's owner window, starts the worker and returns at the dialog's
// end. True when the run went through to its end without a failure and the user didn't cancel. The
// worker may still be inside its current call then; no call begins after this has returned. False
// also when the dialog can't be opened.
bool ShowTransformProgress(TransformRun& run);

} // namespace obcore
