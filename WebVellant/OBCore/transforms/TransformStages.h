// The stages of a run: what the provider manager is asked for, in which order, and what becomes of
// the list of files.
#pragma once

#include <cstdint>

#include "OBCore/transforms/TransformDisplay.h"
#include "OBCore/transforms/TransformRun.h"

namespace obcore {

// How many of the selected providers work in each stage.
struct TransformSummary {
    std::int32_t beforeList = 0;
    std::int32_t afterList = 0;
    std::int32_t perFile = 0;
    std::int32_t final = 0;
};

// Each returns false when the manager reports a failure and when the dialog has ended meanwhile;
// the list of the run is then that of the last step that was finished.

bool GetTransformSummary(TransformRun& run, TransformSummary& summary);

// The list stage, which runs before and after the per-file stage: the providers may merge, replace
// or drop files. Asks for the counts again and does nothing, with success, when both list counts
// are below 1 or the list is empty.
bool RunListStage(TransformRun& run);

// Each file by itself; one whose path comes back empty is dropped. Shows how far the work is.
bool RunPerFileStage(TransformRun& run, const TransformDisplay& display);

// The whole list once more, at the end. Runs on the dialog's thread. Does nothing, with success,
// when the stage has no provider or there are no files.
bool RunFinalStage(TransformRun& run);

} // namespace obcore
