#include "services/archive/compress/BlockCompressor.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "services/archive/compress/LastDeflateBlock.h"

namespace obarchive {
namespace {

constexpr int kLevels[] = {1, 8, 10}; // by Effort

// Room for the closing block behind a stream.
constexpr std::size_t kClosing = 6;

// Makes a stream that ends into one that goes on.
bool KeepOpen(ByteBuffer& stream) {
    const std::optional<LastDeflateBlock> last = FindLastDeflateBlock(stream.Bytes());
    if (!last) return false;
    std::uint8_t* const bytes = stream.Data();
    bytes[last->headerBit / 8] &= static_cast<std::uint8_t>(~(1U << (last->headerBit % 8)));
    // Three zero bits are the header of a stored block that isn't the last one; the rest of their
    // byte is passed over. The bits behind the last block are zero already.
    const auto oldSize = stream.Size();
    const auto header = static_cast<std::size_t>((last->endBit + 3 + 7) / 8);
    constexpr std::uint8_t kEmpty[] = {0x00, 0x00, 0xFF, 0xFF};
    if (!stream.Resize(header + sizeof kEmpty)) return false;
    if (header > oldSize) std::memset(bytes + oldSize, 0, header - oldSize);
    std::memcpy(bytes + header, kEmpty, sizeof kEmpty);
    return true;
}

} // namespace

libdeflate_compressor* BlockCompressor::For(Effort effort) {
    const auto row = static_cast<std::size_t>(effort);
    if (!compressors_[row]) compressors_[row].reset(libdeflate_alloc_compressor(kLevels[row]));
    if (!compressors_[row]) throw std::bad_alloc();
    return compressors_[row].get();
}

ByteBuffer BlockCompressor::Compress(std::span<const std::uint8_t> data, Effort effort, bool last) {
    libdeflate_compressor* const compressor = For(effort);
    const std::size_t bound = libdeflate_deflate_compress_bound(compressor, data.size());
    ByteBuffer packed(bound + kClosing);
    const std::size_t size =
        libdeflate_deflate_compress(compressor, data.data(), data.size(), packed.Data(), bound);
    if (size == 0 || !packed.Resize(size)) return {};
    if (!last && !KeepOpen(packed)) return {};
    return packed;
}

bool DoesShrink(std::span<const std::uint8_t> beginning, BlockCompressor& compressor) {
    constexpr std::size_t kSample = 16 * 1024;
    constexpr std::size_t kSamples = 4;
    const std::size_t step = beginning.size() / kSamples;
    std::size_t looked = 0;
    std::size_t packed = 0;
    for (std::size_t sample = 0; sample < kSamples; ++sample) {
        const auto piece = beginning.subspan(sample * step, std::min(kSample, step));
        looked += piece.size();
        packed += compressor.Compress(piece, Effort::Glance, true).Size();
    }
    return packed < looked - looked / 64;
}

} // namespace obarchive
