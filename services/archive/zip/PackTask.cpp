#include "services/archive/zip/PackTask.h"

#include <stdexcept>
#include <utility>

#include "services/archive/compress/AdaptiveDeflate.h"
#include "services/archive/compress/XzStream.h"

namespace obarchive {

PackTask::~PackTask() {
    settings_.spare->Give(std::move(raw));
    settings_.spare->Give(std::move(packed));
}

ByteBuffer PackTask::Deflate(BlockCompressor& compressor) {
    ByteBuffer room = settings_.spare->Take(BlockCompressor::Bound(raw.Size()));
    return DeflatePiece(compressor, raw.Bytes(), order.last, std::move(room));
}

void PackTask::PackWhole(BlockCompressor& compressor) {
    if (raw.Size() != 0 && order.packing == Packing::Deflate) packed = Deflate(compressor);
    if (raw.Size() != 0 && order.packing == Packing::Xz) packed = PackXz(raw.Bytes());
    const bool smaller = packed.Size() != 0 && packed.Size() < raw.Size();
    if (smaller) return;
    settings_.spare->Give(std::exchange(packed, {}));
    order.packing = Packing::Store;
}

void PackTask::Pack(BlockCompressor& compressor) {
    if (order.IsWhole() && order.packing != Packing::Store) return PackWhole(compressor);
    if (order.packing != Packing::Deflate) return;
    packed = Deflate(compressor);
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
    source.Reset();
    checksum = libdeflate_crc32(0, raw.Data(), raw.Size());
    Pack(compressor);
    if (packed.Size() != 0) settings_.spare->Give(std::exchange(raw, {}));
    if (order.keySize != 0) Encrypt();
}

} // namespace obarchive
