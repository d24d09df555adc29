// What a worker does with a piece of a file: checksum, compression, keys, encryption.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/archive/compress/SpareBlocks.h"
#include "services/archive/compress/WorkerPool.h"
#include "services/archive/crypto/Ae2.h"

namespace obarchive {

enum class Packing { Store, Deflate, Xz };

// Where a piece is in its file, and what the worker is to do with it.
struct PackOrder {
    Packing packing = Packing::Deflate;
    bool first = true;
    bool last = true;
    std::size_t keySize = 0;             // bytes of the cipher's key, 0 for none
    std::uint64_t offset = 0;            // of the piece in its file
    std::shared_ptr<const Ae2Keys> keys; // of a larger file that is only stored

    bool IsWhole() const noexcept { return first && last; }
};

// What every task of a run needs; what it names outlives them.
struct PackSettings {
    const Ae2Algorithms* algorithms = nullptr; // both null without encryption
    Ae2KeyMaker* keys = nullptr;
    SpareBlocks* spare = nullptr;
};

// A piece that is the whole file comes out complete: stored after all if it didn't shrink, and
// encrypted. Of a larger file, each piece comes out compressed, the first one with the keys of the
// entry; encryption needs to know where in the stream a piece begins, so it comes later. Only of a
// file that is stored as it is this is known, and its pieces come out encrypted, but for the code.
// Pieces of a larger xz file come out as they were: that stream is made in one.
class PackTask : public Task {
public:
    PackTask(const PackOrder& order, const PackSettings& settings, ByteBuffer raw)
        : order(order), rawSize(raw.Size()), raw(std::move(raw)), settings_(settings) {}
    ~PackTask() override;

    void Do(BlockCompressor& compressor) override;

    // What goes into the entry between `head` and `tail`.
    std::span<std::uint8_t> Body() { return packed.Size() != 0 ? packed.Bytes() : raw.Bytes(); }

    // The file's handle, which is here for the worker to close: that can take as long as
    // compressing a small file.
    ObLib::UniqueKernelHandle source;
    PackOrder order; // afterwards `packing` is what was done
    const std::size_t rawSize;
    ByteBuffer raw;
    ByteBuffer packed; // empty when the raw bytes are what is stored
    std::uint32_t checksum = 0;
    std::optional<Ae2Keys> keys;
    std::vector<std::uint8_t> head;
    std::vector<std::uint8_t> tail;

private:
    ByteBuffer Deflate(BlockCompressor& compressor);
    void Pack(BlockCompressor& compressor);
    void PackWhole(BlockCompressor& compressor);
    void Encrypt();
    void EncryptWhole();

    PackSettings settings_;
};

} // namespace obarchive
