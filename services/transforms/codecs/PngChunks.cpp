// From chunk to chunk.
#include "services/transforms/codecs/PngChunks.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "services/transforms/raster/ExifValues.h"
#include "services/transforms/raster/Numbers.h"

namespace transforms {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view Kept[] = {"iCCP", "sRGB", "gAMA", "cHRM", "cICP", "mDCV", "cLLI",
                                     "pHYs", "eXIf", "tEXt", "zTXt", "iTXt", "tIME"};
const std::uint64_t SignatureSize = 8, HeaderSize = 8, ChecksumSize = 4;

struct ChunkHeader {
    std::uint8_t bytes[8];

    std::uint32_t Length() const noexcept { return BigEndian32(bytes); }
    std::string_view Type() const noexcept { return {reinterpret_cast<const char*>(bytes) + 4, 4}; }
};

bool IsKept(std::string_view type) noexcept {
    return std::find(std::begin(Kept), std::end(Kept), type) != std::end(Kept);
}

PngChunk ReadChunk(PictureSource& source, std::uint64_t offset, const ChunkHeader& header,
                   bool after) {
    PngChunk chunk{{}, PictureBytes(header.Length()), after};
    std::memcpy(chunk.type.data(), header.bytes + 4, 4);
    if (ReadPicture(source, offset, chunk.data) != chunk.data.size())
        throw PictureFailure{PictureOutcome::Damaged};
    return chunk;
}

} // namespace

const PictureBytes* PngChunks::Find(const char* type) const noexcept {
    const auto found = std::ranges::find_if(
        kept, [&](const PngChunk& chunk) { return std::memcmp(chunk.type.data(), type, 4) == 0; });
    return found == kept.end() ? nullptr : &found->data;
}

std::uint16_t PngChunks::Orientation() const noexcept {
    const PictureBytes* const exif = Find("eXIf");
    return exif ? ExifOrientation(*exif) : kUprightOrientation;
}

PngChunks ScanPng(PictureSource& source, const PictureControl& control) {
    PngChunks chunks;
    bool after = false;
    std::uint64_t metadata = 0;
    for (std::uint64_t offset = SignatureSize;;) {
        control.ThrowIfCancelled();
        ChunkHeader header;
        if (ReadPicture(source, offset, header.bytes) != HeaderSize || header.Length() > 0x7FFFFFFF)
            throw PictureFailure{PictureOutcome::Damaged};
        offset += HeaderSize;
        if (header.Type() == "IEND"sv) return chunks;
        if (header.Type() == "IDAT"sv) after = true;
        if (header.Type() == "acTL"sv && !after) chunks.isAnimated = true;
        if (IsKept(header.Type())) {
            metadata += header.Length() + 64ull; // a chunk without data takes memory too
            if (metadata > control.limits.metadata) throw PictureFailure{PictureOutcome::TooLarge};
            chunks.kept.push_back(ReadChunk(source, offset, header, after));
        }
        offset += header.Length() + ChecksumSize;
    }
}

} // namespace transforms
