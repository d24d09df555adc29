// Removes from a file what documents who made it, where, when and with what. What people see in the
// file stays: the coded pixels are the same bytes before and after.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "services/transforms/personal/Analysis.h"
#include "services/transforms/personal/Findings.h"

namespace transforms {

// Removes personal data from the bytes of one picture; documents are read by the room above this
// one. The format is recognised by the bytes alone.
// Called on any thread; keeps no state. Equal bytes give equal results,
// cleaning a result gives NothingFound, and FindPersonalData of a result is empty. Time and memory
// grow linearly with the file (n log n where a TIFF's parts are sorted); nothing is decompressed.
// Throws std::bad_alloc alone.
CleanedFile RemovePersonalData(std::span<const std::byte> file);

// The same without making the new file: its parts are views of `file`, which outlives the result.
personal::Analysis AnalyzePicture(std::span<const std::byte> file);

// What RemovePersonalData would remove, for the check that opens every result again. A damaged file
// gives one finding, Unreadable, so that no check passes because nothing could be read; a file of
// an unsupported format gives nothing. Throws std::bad_alloc alone.
std::vector<Finding> FindPersonalData(std::span<const std::byte> file);

} // namespace transforms
