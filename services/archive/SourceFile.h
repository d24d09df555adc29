// A file of the user as the container library reads it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include <zip.h>

#include "services/archive/RunState.h"

namespace obarchive {

// Size and time of a source when the run began.
struct SourceFacts {
    std::uint64_t size = 0;
    FILETIME lastWrite{};
};

// False with the run's failure noted: not there, no right to look, or a folder.
bool ReadSourceFacts(const std::wstring& path, SourceFacts& facts, RunState& run);

// The system's time as seconds since 1970, kept within what a zip's own field holds (1980 to 2107,
// local time).
std::int64_t ZipTime(const FILETIME& time);

// A source that opens `path` when its turn comes, for reading only and shared with every other
// program, and closes it before the next one's. Failures and bytes are noted in `run`, which must
// outlive the source. Null when there is no memory. The caller owns it until an archive takes it.
zip_source_t* MakeSource(const std::wstring& path, const SourceFacts& facts, RunState& run,
                         zip_error_t* error);

} // namespace obarchive
