// Deflate at the compressor's full speed, in blocks that join into one stream.
#pragma once

#include <libdeflate.h>

#include <cstdint>
#include <memory>
#include <span>

#include "services/archive/compress/ByteBuffer.h"

namespace obarchive {

// How much work goes into a block.
enum class Effort {
    Glance,   // only to see whether the data shrinks
    Normal,   // a lazy matcher that looks two positions ahead
    Thorough, // near-optimal parsing: up to a fifth smaller at a third to a sixth of the speed
};

// Used by one thread. Its tables are made when they are first wanted and used again: one
// megabyte for normal work and nine for thorough work.
class BlockCompressor {
public:
    // The whole of `data` as deflate. With `last`, a stream that ends; otherwise one that goes on:
    // an empty stored block closes it on a byte border, and the next stream may follow. Throws
    // std::bad_alloc; an empty buffer means that the library failed. The result is in `room` if
    // that has a capacity of Bound.
    ByteBuffer Compress(std::span<const std::uint8_t> data, Effort effort, bool last,
                        ByteBuffer room = {});

    // The most bytes that data of this size becomes.
    static std::size_t Bound(std::size_t size);

private:
    struct Free {
        void operator()(libdeflate_compressor* compressor) const {
            libdeflate_free_compressor(compressor);
        }
    };
    libdeflate_compressor* For(Effort effort);

    std::unique_ptr<libdeflate_compressor, Free> compressors_[3];
};

} // namespace obarchive
