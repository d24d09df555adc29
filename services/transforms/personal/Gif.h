// GIF: keeps screen, colours, images, their timing, visible texts, the loop and the profile;
// removes comments, other programs' blocks and what follows the end.
#pragma once

#include "services/transforms/personal/Analysis.h"

namespace transforms::personal {

bool IsGif(Bytes file);

// Damaged when a block isn't whole or begins as none that the format has, and without any image.
Analysis AnalyzeGif(Bytes file);

} // namespace transforms::personal
