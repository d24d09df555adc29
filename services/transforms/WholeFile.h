// Work on a file that is read and written as a whole: progress in both halves, and the last reply.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "services/transforms/WorkChannel.h"
#include "services/transforms/personal/Findings.h"

namespace transforms {

// Has the system read a mapped file, with a report after each block: a slow disk isn't a process
// that hangs. `before` is the work that the request's earlier records have reported. False when
// nobody reads the reports.
bool ReadAhead(std::span<const std::byte> bytes, WorkChannel& channel,
               std::uint64_t before = 0) noexcept;

// Writes the result, which are these parts one after the other, with a report after each block.
// `read` is the work that the request's earlier records have reported. Without a target nothing is
// written. Nothing when nobody reads the reports. Throws std::bad_alloc.
std::optional<WorkEnd> WriteTarget(HANDLE target, std::span<const std::span<const std::byte>> parts,
                                   std::uint64_t read, WorkChannel& channel);

// The reply when the work has made no new file.
WorkEnd EndOfWholeFile(CleanOutcome outcome) noexcept;

} // namespace transforms
