// One run: from the job to the zip that stands, or to nothing at all.
#pragma once

#include <string>

#include "services/archive/zip/ZipJob.h"
#include "services/archive/zip/ZipResults.h"

namespace obarchive {

// Blocks until the zip stands under its name or the run has failed; in the second case no file of
// the run is left. Sources are opened one after the other, for reading only. `progress` may be
// empty. Any thread; throws only what memory shortage throws. `failedFile`, when given, gets the
// full path of the source that the failure concerns, and becomes empty when it concerns none.
ZipResult RunZip(const ZipJob& job, const ProgressCallback& progress,
                 std::wstring* failedFile = nullptr);

} // namespace obarchive
