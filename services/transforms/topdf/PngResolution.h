// The resolution of a PNG file.
#pragma once

#include "services/transforms/codecs/PngChunks.h"
#include "services/transforms/topdf/PageLayout.h"

namespace transforms {

// None for a file that names only the shape of its pixels.
Resolution ResolutionOfPng(const PngChunks& chunks) noexcept;

} // namespace transforms
