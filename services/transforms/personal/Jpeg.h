// JPEG: keeps tables, frames, scans, the profile, what decoders need to know of colours, and the
// orientation; removes every other segment and what follows the end.
#pragma once

#include "services/transforms/personal/Analysis.h"

namespace transforms::personal {

bool IsJpeg(Bytes file);

// Damaged when a marker, a table's length or the end isn't there; NotSupported for JPEG-LS.
Analysis AnalyzeJpeg(Bytes file);

} // namespace transforms::personal
