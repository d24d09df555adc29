// Reads what a TIFF consists of: pages, what of them stays, and what was found.
#pragma once

#include <vector>

#include "services/transforms/personal/Analysis.h"
#include "services/transforms/personal/TiffDirectory.h"

namespace transforms::personal {

struct TiffPage {
    std::vector<TiffEntry> entries; // that stay, ascending
};

struct TiffContent {
    CleanOutcome outcome = CleanOutcome::NothingFound; // Damaged and NotSupported end the reading
    FindingCounter found;
    std::vector<TiffPage> pages;
    std::vector<Extent> kept;  // values and coded pixels that are copied; none is empty
    std::vector<Extent> other; // the rest of what is referred to: removed, or written anew
};

// Follows every link once; the work is bounded by the file's size.
TiffContent ReadTiffContent(const TiffReader& reader);

} // namespace transforms::personal
