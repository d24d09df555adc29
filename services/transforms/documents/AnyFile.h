// Removes personal data from a document or a picture, whatever the bytes are.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "services/transforms/documents/DocumentControl.h"
#include "services/transforms/personal/Analysis.h"
#include "services/transforms/personal/Findings.h"

namespace transforms {

// Removes personal data from the bytes of one file; pictures inside a document are cleaned as well.
// The format is recognised by the bytes alone. Called by the work process, on any thread, for
// encrypted PDFs on one thread at a time; keeps no state. Equal bytes give equal results, cleaning
// a result gives NothingFound, and FindInFile of a result is empty. Texts, pages, sheets and a
// PDF's encryption stay as they are. Pictures report no steps: they are done at once. Throws
// std::bad_alloc alone.
CleanedFile CleanFile(std::span<const std::byte> file, const DocumentControl& control = {});

// The same without making the new file: its parts are views of `file`, which outlives the result.
personal::Analysis AnalyzeFile(std::span<const std::byte> file,
                               const DocumentControl& control = {});

// What CleanFile would remove. A damaged file gives one finding, Unreadable; a file that can't be
// cleaned for another reason gives nothing. Throws std::bad_alloc alone.
std::vector<Finding> FindInFile(std::span<const std::byte> file,
                                const DocumentControl& control = {});

} // namespace transforms
