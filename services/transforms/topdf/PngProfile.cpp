#include "services/transforms/topdf/PngProfile.h"

#include <algorithm>
#include <cstring>

#include <zlib.h>

#include "services/transforms/raster/Numbers.h"

namespace transforms {
namespace {

const PictureBytes* Find(const PngChunks& chunks, const char* type) noexcept {
    const auto found = std::ranges::find_if(chunks.kept, [&](const PngChunk& chunk) {
        return std::memcmp(chunk.type.data(), type, 4) == 0;
    });
    return found == chunks.kept.end() ? nullptr : &found->data;
}

struct Inflater : z_stream {
    Inflater() : z_stream{} { isBegun = inflateInit(this) == Z_OK; }
    ~Inflater() {
        if (isBegun) inflateEnd(this);
    }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;
    bool isBegun = false;
};

PictureBytes Inflated(std::span<const std::uint8_t> coded, std::size_t most) {
    Inflater stream;
    stream.next_in = const_cast<Bytef*>(coded.data());
    stream.avail_in = static_cast<uInt>(coded.size());
    PictureBytes bytes;
    int result = stream.isBegun ? Z_OK : Z_MEM_ERROR;
    while (result == Z_OK && bytes.size() < most) {
        const std::size_t before = bytes.size();
        bytes.resize(std::min(before + 64 * 1024, most));
        stream.next_out = &bytes[before];
        stream.avail_out = static_cast<uInt>(bytes.size() - before);
        result = inflate(&stream, Z_NO_FLUSH);
        bytes.resize(bytes.size() - stream.avail_out);
    }
    return result == Z_STREAM_END ? bytes : PictureBytes();
}

} // namespace

PictureBytes ProfileOfPng(const PngChunks& chunks, std::size_t most) {
    const PictureBytes* const chunk = Find(chunks, "iCCP");
    if (!chunk) return {};
    // A name, its end, the kind of compression, and the coded profile.
    const auto end = std::find(chunk->begin(), chunk->end(), 0);
    if (chunk->end() - end < 3) return {};
    return Inflated(std::span(*chunk).subspan(static_cast<std::size_t>(end - chunk->begin()) + 2),
                    most);
}

Resolution ResolutionOfPng(const PngChunks& chunks) noexcept {
    constexpr double kInchesAMetre = 1 / 0.0254;
    constexpr std::size_t kSize = 9, kUnitAt = 8;
    const PictureBytes* const chunk = Find(chunks, "pHYs");
    if (!chunk || chunk->size() != kSize || (*chunk)[kUnitAt] != 1) return {};
    const std::span<const std::uint8_t> numbers(*chunk);
    return {BigEndian32(numbers) / kInchesAMetre, BigEndian32(numbers.subspan(4)) / kInchesAMetre};
}

} // namespace transforms
