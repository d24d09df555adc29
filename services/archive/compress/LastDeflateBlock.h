// Finds its way through a finished deflate stream without unpacking it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace obarchive {

// Bits count from the stream's first byte on, its lowest bit first.
struct LastDeflateBlock {
    std::uint64_t headerBit = 0; // the bit that says "last block"
    std::uint64_t endBit = 0;    // the first bit behind the block
};

// Where the last block of `stream` begins and ends. Compressed streams are a chain in which each
// block's end is known only by decoding it, so the codes are followed; what they stand for is not
// looked at. Nothing when the stream isn't well-formed or ends early. Any thread.
std::optional<LastDeflateBlock> FindLastDeflateBlock(std::span<const std::uint8_t> stream);

} // namespace obarchive
