// WebP: keeps images, frames, alpha and profile, and the orientation; removes metadata, unknown
// chunks and what follows the end.
#pragma once

#include "services/transforms/personal/Analysis.h"

namespace transforms::personal {

bool IsWebP(Bytes file);

// Damaged when a chunk isn't whole, when the header's size isn't the format's, and without any
// image.
Analysis AnalyzeWebP(Bytes file);

} // namespace transforms::personal
