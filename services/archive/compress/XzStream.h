// The stronger and slower compression of .zipx files.
#pragma once

#include <lzma.h>

#include <cstdint>
#include <span>

#include "services/archive/compress/ByteBuffer.h"

namespace obarchive {

// A whole file in one call. Empty when it doesn't get smaller. Throws std::bad_alloc.
ByteBuffer PackXz(std::span<const std::uint8_t> data);

// A larger file in pieces, by threads of the library's own. One thread.
class XzStream {
public:
    XzStream() = default;
    ~XzStream() { lzma_end(&stream_); }
    XzStream(const XzStream&) = delete;
    XzStream& operator=(const XzStream&) = delete;

    // For a file of `size` bytes. False when there is no memory.
    bool Begin(std::uint64_t size);

    // Gives the next piece, whose bytes must stay until it is used up.
    void Feed(std::span<const std::uint8_t> piece, bool last);
    bool IsUsedUp() const noexcept { return stream_.avail_in == 0 && !last_; }

    // Works for 50 milliseconds at most and puts what came out into `out`, which may be nothing.
    // False when the library fails.
    bool Advance(ByteBuffer& out);
    bool HasEnded() const noexcept { return ended_; }

private:
    lzma_stream stream_ = LZMA_STREAM_INIT;
    bool last_ = false;
    bool ended_ = false;
};

} // namespace obarchive
