// One picture with a stamp laid over it, in its own size and form.
#pragma once

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/Stamp.h"

namespace transforms {

// Quality 96: finer than pictures are coded. JPEG keeps the coarser of its own tables and these.
inline constexpr int kCoarsenessOfStamped = 8;

// Writes the target for Written only, but may have begun to for Cancelled and the failures. A lossy
// picture is coded as finely as it was. Animations, files of many pages and pictures in which the
// stamp has no room are Unchanged. Throws nothing. Uses a second thread for its time.
PictureOutcome StampPicture(PictureSource& source, PictureTarget& target, const Stamp& stamp,
                            const PictureControl& control) noexcept;

} // namespace transforms
