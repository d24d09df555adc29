// Deflate with as much work as a piece is worth.
#pragma once

#include "services/archive/compress/BlockCompressor.h"

namespace obarchive {

// Compresses the piece, thoroughly if IsWorthThoroughWork. The same piece always becomes the same
// bytes. `room`, result and exceptions as of BlockCompressor::Compress.
ByteBuffer DeflatePiece(BlockCompressor& compressor, std::span<const std::uint8_t> piece, bool last,
                        ByteBuffer room = {});

// Whether thorough work makes a sample from the middle of the piece so much smaller that normal
// work would leave the zip well above the size that people are used to. Tables and long even texts
// do; programs, documents and web pages don't. Small pieces are never worth it: their sample would
// cost as much as they do.
bool IsWorthThoroughWork(BlockCompressor& compressor, std::span<const std::uint8_t> piece);

// Whether the beginning of a file is worth compressing: whether samples of it, one from each
// quarter, become smaller by more than one part in kLeastGain. Pictures, films and archives don't.
constexpr std::size_t kLeastGain = 64;
bool DoesShrink(std::span<const std::uint8_t> beginning, BlockCompressor& compressor);

} // namespace obarchive
