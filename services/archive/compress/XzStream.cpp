#include "services/archive/compress/XzStream.h"

#include <algorithm>
#include <new>

namespace obarchive {
namespace {

// Each thread of the library takes about a hundred megabytes at the highest preset.
constexpr std::uint32_t kMostThreads = 4;
constexpr std::uint32_t kPatience = 50; // milliseconds
constexpr lzma_check kCheck = LZMA_CHECK_CRC32;

// The preset's window grows with its number and its match tables with the window: a small file gets
// the smallest window that it fits into, so that a thousand small files don't clear gigabytes.
std::uint32_t Preset(std::uint64_t size) {
    constexpr std::uint64_t kMebibyte = 1024 * 1024;
    if (size <= kMebibyte) return 1;
    if (size <= 2 * kMebibyte) return 2;
    if (size <= 4 * kMebibyte) return 3;
    return 6;
}

} // namespace

ByteBuffer PackXz(std::span<const std::uint8_t> data) {
    ByteBuffer packed(data.size());
    std::size_t size = 0;
    const lzma_ret result =
        lzma_easy_buffer_encode(Preset(data.size()), kCheck, nullptr, data.data(), data.size(),
                                packed.Data(), &size, packed.Capacity());
    if (result == LZMA_MEM_ERROR) throw std::bad_alloc();
    if (result != LZMA_OK || !packed.Resize(size)) return {};
    return packed;
}

bool XzStream::Begin(std::uint64_t size) {
    lzma_mt settings{};
    settings.threads = std::clamp<std::uint32_t>(lzma_cputhreads(), 1, kMostThreads);
    settings.timeout = kPatience;
    settings.preset = Preset(size);
    settings.check = kCheck;
    return lzma_stream_encoder_mt(&stream_, &settings) == LZMA_OK;
}

void XzStream::Feed(std::span<const std::uint8_t> piece, bool last) {
    stream_.next_in = piece.data();
    stream_.avail_in = piece.size();
    last_ = last;
}

bool XzStream::Advance(ByteBuffer& out) {
    stream_.next_out = out.Data();
    stream_.avail_out = out.Capacity();
    const lzma_ret result = lzma_code(&stream_, last_ ? LZMA_FINISH : LZMA_RUN);
    ended_ = result == LZMA_STREAM_END;
    return out.Resize(out.Capacity() - stream_.avail_out) &&
           (ended_ || result == LZMA_OK || result == LZMA_BUF_ERROR);
}

} // namespace obarchive
