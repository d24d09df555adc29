// How much work a piece of a file is worth, judged by the piece itself.
#pragma once

#include <cstddef>
#include <cstdint>

#include "services/archive/compress/BlockCompressor.h"

namespace obarchive {

// What a quick compression of a piece showed.
struct QuickResult {
    std::size_t rawSize = 0;
    std::size_t packedSize = 0;
    std::size_t blocks = 0; // deflate blocks of the stream
};

// The effort with which every piece is compressed first.
Effort FirstEffort(std::size_t size) noexcept;

// The logarithm of how much larger than thorough compression the usual zip program's result would
// be, estimated from the quick result: that program cuts its blocks at fixed places, so it loses
// where the content changes often, which shows in short blocks.
double PeerLoss(const QuickResult& quick) noexcept;

// The gain, as a logarithm, of thorough compression over the quick result. In small pieces it is
// much the same everywhere; in others it varies so much that it has to be measured on a sample,
// where it may matter, and counts as none elsewhere.
double AssumedGain(std::size_t size) noexcept;
bool IsGainMeasured(const QuickResult& quick) noexcept;

// The share of such pieces, 0 to 1, that have to be compressed thoroughly to keep the zip within
// the allowance of two per cent above the usual program's size.
double ThoroughShare(const QuickResult& quick, double gain) noexcept;

// Spreads a share evenly over the numbers of pieces. The same number and share always get the same
// answer, so the same files in the same order always make the same zip.
bool IsPicked(std::size_t number, double share) noexcept;

} // namespace obarchive
