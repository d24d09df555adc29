#include "services/transforms/personal/RiffChunks.h"

namespace transforms::personal {
namespace {

constexpr std::size_t kNameSize = 4;

} // namespace

std::optional<RiffChunk> ReadRiffChunk(Bytes rest) {
    if (rest.size() < kRiffChunkHeader) return std::nullopt;
    const std::size_t size = LittleEndian32(rest, kNameSize);
    const std::size_t left = rest.size() - kRiffChunkHeader;
    if (size > left) return std::nullopt;
    RiffChunk chunk;
    chunk.name = TextOf(rest.first(kNameSize));
    chunk.data = rest.subspan(kRiffChunkHeader, size);
    chunk.hasPadding = size % 2 != 0 && size < left;
    chunk.whole = rest.first(kRiffChunkHeader + size + (chunk.hasPadding ? 1 : 0));
    return chunk;
}

void KeepRiffChunk(PartList& parts, const RiffChunk& chunk) {
    parts.Keep(chunk.whole.first(kRiffChunkHeader + chunk.data.size()));
    if (chunk.data.size() % 2 == 0) return;
    if (chunk.hasPadding && chunk.IsPaddedByZero()) {
        parts.Keep(chunk.whole.last(1));
    } else {
        parts.Add({std::byte{0}});
    }
}

OwnedBytes MakeRiffChunk(std::string_view name, Bytes data) {
    OwnedBytes made;
    Append(made, name);
    AppendLittleEndian32(made, static_cast<std::uint32_t>(data.size()));
    Append(made, data);
    if (data.size() % 2 != 0) AppendByte(made, 0);
    return made;
}

} // namespace transforms::personal
