// One run: from the job to the complete zip, or to no file at all.
#pragma once

#include <string>

#include "services/archive/zip/ZipJob.h"
#include "services/archive/zip/ZipResults.h"

namespace obarchive {

// The paths of a job that its run has resolved.
struct RunPaths {
    std::wstring target; // full path of the zip; empty when the system can't take it
    std::wstring failed; // the path that a failure concerns, empty when it concerns none: full, or
                         // as the job has it when the system can't take it
};

// Blocks until the zip exists under its name or the run has failed; in the second case no file of
// the run is left. Sources are opened one after the other, for reading only. `progress` and `paths`
// may be empty. Any thread; throws only what memory shortage throws.
ZipResult RunZip(const ZipJob& job, const ProgressCallback& progress, RunPaths* paths = nullptr);

} // namespace obarchive
