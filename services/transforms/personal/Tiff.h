// TIFF: keeps every page with what decoders draw and print from; removes all other tags, what they
// refer to, and bytes that nothing refers to. The file is written anew.
#pragma once

#include "services/transforms/personal/Analysis.h"

namespace transforms::personal {

bool IsTiff(Bytes file);

// Damaged when a page, its pixels or a value that decoders need isn't whole, and when pixels share
// bytes with what has to go. NotSupported for cameras' raw data, for codings that aren't known, and
// for JPEG-coded pixels with metadata of their own among them.
Analysis AnalyzeTiff(Bytes file);

} // namespace transforms::personal
