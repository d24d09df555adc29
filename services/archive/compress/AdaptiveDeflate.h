// Deflate with as much work as a piece is worth.
#pragma once

#include "services/archive/compress/BlockCompressor.h"

namespace obarchive {

// Compresses the piece quickly, and again thoroughly where that is needed to stay within the size
// allowance. `number` counts the pieces of a run. Result and exceptions as of
// BlockCompressor::Compress.
ByteBuffer DeflatePiece(BlockCompressor& compressor, std::span<const std::uint8_t> piece,
                        std::size_t number, bool last);

// Whether the beginning of a file is worth compressing: whether samples of it, one from each
// quarter, become smaller by more than one part in kLeastGain. Pictures, films and archives don't.
constexpr std::size_t kLeastGain = 64;
bool DoesShrink(std::span<const std::uint8_t> beginning, BlockCompressor& compressor);

} // namespace obarchive
