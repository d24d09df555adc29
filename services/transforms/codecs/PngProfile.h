// The colour profile of a PNG file.
#pragma once

#include <cstddef>

#include "services/transforms/codecs/PngChunks.h"

namespace transforms {

// Empty when the file has none, or one that is damaged or larger than `most` bytes.
PictureBytes ProfileOfPng(const PngChunks& chunks, std::size_t most);

} // namespace transforms
