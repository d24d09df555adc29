// One picture made smaller by an aim of its own: the three aims that look at each file alone.
#pragma once

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"

namespace transforms {

enum class ResizeAim {
    LongestEdge, // at most so many pixels
    Percent,     // of both sides, below 100
    Bytes,       // at most so many; quality and size fall together
};

struct ResizeRequest {
    ResizeAim aim = ResizeAim::LongestEdge;
    std::uint64_t value = 2048;
    // Of lossy forms, for the first two aims, 1 to 100 as in JPEG; a picture never becomes better
    // coded than it was.
    int quality = 90;
};

// Writes the target for Written only, but may have begun to for Cancelled and the failures. A
// picture that meets the aim already is Unchanged, as is one that the aim by bytes would only make
// larger. Throws nothing. Uses a second thread for its time.
PictureOutcome ResizePicture(PictureSource& source, PictureTarget& target,
                             const ResizeRequest& request, const PictureControl& control) noexcept;

} // namespace transforms
