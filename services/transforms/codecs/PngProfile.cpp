#include "services/transforms/codecs/PngProfile.h"

#include <algorithm>

#include <zlib.h>

namespace transforms {
namespace {

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
    const PictureBytes* const chunk = chunks.Find("iCCP");
    if (!chunk) return {};
    // A name, its end, the kind of compression, and the coded profile.
    const auto end = std::find(chunk->begin(), chunk->end(), 0);
    if (chunk->end() - end < 3) return {};
    return Inflated(std::span(*chunk).subspan(static_cast<std::size_t>(end - chunk->begin()) + 2),
                    most);
}

} // namespace transforms
