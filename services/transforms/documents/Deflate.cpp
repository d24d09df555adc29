#include "services/transforms/documents/Deflate.h"

#include <new>

#include <zlib.h>

namespace transforms::documents {
namespace {

using namespace personal;

constexpr int kRawWindow = -MAX_WBITS; // without a header of zlib's own
constexpr int kMemory = 8;             // zlib's default

// The library's structure isn't changed by reading from `in`: its type only lacks the const.
Bytef* InputOf(Bytes bytes) {
    return reinterpret_cast<Bytef*>(const_cast<std::byte*>(bytes.data()));
}
Bytef* OutputOf(OwnedBytes& bytes) { return reinterpret_cast<Bytef*>(bytes.data()); }

struct Inflater {
    z_stream stream{};
    Inflater() {
        if (inflateInit2(&stream, kRawWindow) != Z_OK) throw std::bad_alloc();
    }
    ~Inflater() { inflateEnd(&stream); }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;
};

struct Deflater {
    z_stream stream{};
    Deflater() {
        if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kRawWindow, kMemory,
                         Z_DEFAULT_STRATEGY) != Z_OK) {
            throw std::bad_alloc();
        }
    }
    ~Deflater() { deflateEnd(&stream); }
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;
};

} // namespace

std::optional<OwnedBytes> Inflate(Bytes packed, std::size_t size) {
    // One byte more, so that a stream that is longer than its header declares doesn't fit.
    OwnedBytes plain(size + 1);
    Inflater inflater;
    inflater.stream.next_in = InputOf(packed);
    inflater.stream.avail_in = static_cast<uInt>(packed.size());
    inflater.stream.next_out = OutputOf(plain);
    inflater.stream.avail_out = static_cast<uInt>(plain.size());
    const int result = inflate(&inflater.stream, Z_FINISH);
    if (result == Z_MEM_ERROR) throw std::bad_alloc();
    if (result != Z_STREAM_END || inflater.stream.avail_in != 0) return {};
    if (inflater.stream.avail_out != 1) return {};
    plain.resize(size);
    return plain;
}

OwnedBytes Deflate(Bytes plain) {
    Deflater deflater;
    OwnedBytes packed(deflateBound(&deflater.stream, static_cast<uLong>(plain.size())));
    deflater.stream.next_in = InputOf(plain);
    deflater.stream.avail_in = static_cast<uInt>(plain.size());
    deflater.stream.next_out = OutputOf(packed);
    deflater.stream.avail_out = static_cast<uInt>(packed.size());
    if (deflate(&deflater.stream, Z_FINISH) != Z_STREAM_END) throw std::bad_alloc();
    packed.resize(packed.size() - deflater.stream.avail_out);
    return packed;
}

std::uint32_t ChecksumOf(Bytes plain) {
    return static_cast<std::uint32_t>(crc32(0, InputOf(plain), static_cast<uInt>(plain.size())));
}

} // namespace transforms::documents
