// The zip's file as the container library writes it.
#pragma once

#include <zip.h>

#include "services/archive/zip/OutputFile.h"
#include "services/archive/zip/RunState.h"

namespace obarchive {

// A target that looks like a file that isn't there yet. The library's own commit and roll back only
// empty the buffer: whether the file gets its name is decided by the run, which knows failures that
// the library doesn't report. `output` and `run` must outlive it. Null when there is no memory.
zip_source_t* MakeArchiveTarget(OutputFile& output, RunState& run, zip_error_t* error);

} // namespace obarchive
