// What the chunks of a PNG file say of its colours and its resolution.
#pragma once

#include "services/transforms/codecs/PngChunks.h"
#include "services/transforms/topdf/PageLayout.h"

namespace transforms {

// The colour profile; empty when the file has none, or one that is damaged or larger than `most`.
PictureBytes ProfileOfPng(const PngChunks& chunks, std::size_t most);

// None for a file that names only the shape of its pixels.
Resolution ResolutionOfPng(const PngChunks& chunks) noexcept;

} // namespace transforms
