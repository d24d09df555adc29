#include "services/archive/compress/BlockCompressor.h"

#include <new>

namespace obarchive {
namespace {

constexpr int kLevels[] = {1, 6, 7, 10}; // of the library, by Effort

} // namespace

libdeflate_compressor* BlockCompressor::For(Effort effort) {
    const auto row = static_cast<std::size_t>(effort);
    if (!compressors_[row]) compressors_[row].reset(libdeflate_alloc_compressor(kLevels[row]));
    if (!compressors_[row]) throw std::bad_alloc();
    return compressors_[row].get();
}

ByteBuffer BlockCompressor::Compress(std::span<const std::uint8_t> data, Effort effort, bool last) {
    libdeflate_compressor* const compressor = For(effort);
    ByteBuffer packed(libdeflate_deflate_compress_bound(compressor, data.size()));
    libdeflate_keep_open(compressor, !last);
    const std::size_t size = libdeflate_deflate_compress(compressor, data.data(), data.size(),
                                                         packed.Data(), packed.Capacity());
    blocks_ = libdeflate_num_blocks(compressor);
    static_cast<void>(packed.Resize(size)); // never more than the capacity
    return packed;
}

} // namespace obarchive
