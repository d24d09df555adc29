// One run: from the job to the zip that stands, or to nothing at all.
#pragma once

#include "services/archive/ZipJob.h"
#include "services/archive/ZipResults.h"

namespace obarchive {

// Blocks until the zip stands under its name or the run has failed; in the second case no file of
// the run is left. Sources are opened one after the other, for reading only. `progress` may be
// empty. Any thread; throws only what memory shortage throws.
ZipResult RunZip(const ZipJob& job, const ProgressCallback& progress);

} // namespace obarchive
