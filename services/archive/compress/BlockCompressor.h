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
    Quick,    // the lazy matcher
    Careful,  // the same with a longer search: one per cent smaller for half as much time again
    Thorough, // near-optimal parsing: two to twelve per cent smaller at a tenth of the speed
};

// One thread. Its tables, some megabytes, are made when they are first wanted and used again.
class BlockCompressor {
public:
    // The whole of `data` as deflate. With `last`, a stream that ends; otherwise one that goes on:
    // an empty stored block closes it on a byte border, and the next stream may follow. Throws
    // std::bad_alloc; an empty buffer means that the library failed.
    ByteBuffer Compress(std::span<const std::uint8_t> data, Effort effort, bool last);

    // Deflate blocks of the last stream, 0 for a few bytes that were only stored.
    std::size_t Blocks() const noexcept { return blocks_; }

private:
    struct Free {
        void operator()(libdeflate_compressor* compressor) const {
            libdeflate_free_compressor(compressor);
        }
    };
    libdeflate_compressor* For(Effort effort);

    std::unique_ptr<libdeflate_compressor, Free> compressors_[4];
    std::size_t blocks_ = 0;
};

} // namespace obarchive
