// Takes a RIFF file's chunks apart.
#pragma once

#include <optional>

#include "services/transforms/personal/Analysis.h"

namespace transforms::personal {

inline constexpr std::size_t kRiffChunkHeader = 8; // name and size

struct RiffChunk {
    std::string_view name; // four characters
    Bytes data;
    Bytes whole; // with the header and, after data of odd size, the byte that pads it
    bool hasPadding = false;
    bool IsPaddedByZero() const { return !hasPadding || whole.back() == std::byte{0}; }
};

// The chunk at the start of `rest`, which isn't empty; nothing when it isn't whole. The last chunk
// may lack its padding.
std::optional<RiffChunk> ReadRiffChunk(Bytes rest);

// Adds a chunk to the clean file, with padding if its size is odd.
void KeepRiffChunk(PartList& parts, const RiffChunk& chunk);

OwnedBytes MakeRiffChunk(std::string_view name, Bytes data);

} // namespace transforms::personal
