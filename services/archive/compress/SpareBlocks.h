// Large buffers that are used again. The system clears each page of new memory, which takes about
// as long as reading the bytes that go into it.
#pragma once

#include <cstddef>
#include <vector>

#include "services/archive/compress/ByteBuffer.h"
#include "services/archive/compress/Monitor.h"

namespace obarchive {

// Usable on any thread. Outlives what returns its buffers.
class SpareBlocks {
public:
    // Keeps at most `most` bytes of spare buffers.
    explicit SpareBlocks(std::size_t most);
    SpareBlocks(const SpareBlocks&) = delete;
    SpareBlocks& operator=(const SpareBlocks&) = delete;

    // A buffer for at least `size` bytes, empty. Throws std::bad_alloc.
    ByteBuffer Take(std::size_t size);

    // Takes a buffer back, or frees it when it is small or enough are spare. An empty one is no
    // error.
    void Give(ByteBuffer buffer) noexcept;

private:
    const std::size_t most_;
    Lock lock_;
    std::size_t kept_ = 0; // bytes
    std::vector<ByteBuffer> spare_;
};

} // namespace obarchive
