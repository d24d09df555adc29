#include "services/archive/zip/PackTask.h"

#include <stdexcept>

#include "services/archive/compress/AdaptiveDeflate.h"
#include "services/archive/compress/XzStream.h"

namespace obarchive {
void PackTask::PackWhole(BlockCompressor& compressor) {
    if (raw.Size() != 0 && order.packing == Packing::Deflate) {
        packed = DeflatePiece(compressor, raw.Bytes(), true);
    }
    if (raw.Size() != 0 && order.packing == Packing::Xz) packed = PackXz(raw.Bytes());
    const bool smaller = packed.Size() != 0 && packed.Size() < raw.Size();
    if (smaller) return;
    packed = {};
    order.packing = Packing::Store;
}

void PackTask::Pack(BlockCompressor& compressor) {
    if (order.IsWhole() && order.packing != Packing::Store) return PackWhole(compressor);
    if (order.packing != Packing::Deflate) return;
    packed = DeflatePiece(compressor, raw.Bytes(), order.last);
    if (packed.Size() == 0) throw std::runtime_error("deflate");
}

void PackTask::EncryptWhole() {
    Ae2Stream stream(*settings_.algorithms, *keys);
    stream.Encrypt(Body());
    const auto front = keys->Head();
    head.assign(front.begin(), front.begin() + static_cast<std::ptrdiff_t>(keys->HeadSize()));
    const auto code = stream.Code();
    tail.assign(code.begin(), code.end());
}

void PackTask::Encrypt() {
    if (order.keys) {
        if (order.first) keys = *order.keys;
        Ae2Stream(*settings_.algorithms, *order.keys).CipherFrom(order.offset, raw.Bytes());
    } else if (order.first) {
        keys = settings_.keys->Make();
        if (order.IsWhole()) EncryptWhole();
    }
}

void PackTask::Do(BlockCompressor& compressor) {
    checksum = libdeflate_crc32(0, raw.Data(), raw.Size());
    Pack(compressor);
    if (packed.Size() != 0) raw = {};
    if (order.keySize != 0) Encrypt();
}

} // namespace obarchive
