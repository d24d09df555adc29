// PNG: keeps the chunks that decoders draw from, with profile, density and animation, and the
// orientation; removes texts, times, private chunks and what follows the end.
#pragma once

#include "services/transforms/personal/Analysis.h"

namespace transforms::personal {

bool IsPng(Bytes file);

// Damaged when a chunk that is needed is missing, too long or has a wrong checksum; NotSupported
// when a chunk is required for decoding that the format doesn't define. Compressed chunks aren't
// inflated.
Analysis AnalyzePng(Bytes file);

} // namespace transforms::personal
