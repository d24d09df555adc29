// Where the data of one entry comes from, after its first piece has been taken.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "services/archive/compress/XzStream.h"
#include "services/archive/zip/OutputFile.h"
#include "services/archive/zip/ReadAhead.h"

namespace obarchive {

// What became of an entry; complete when its stream has ended.
struct EntryRecord {
    std::uint64_t position = 0;   // of its data in the zip
    std::uint64_t packedSize = 0; // with what encryption adds
    std::uint32_t checksum = 0;   // of the plain data
    Packing packing = Packing::Deflate;
    std::optional<Ae2Keys> keys; // kept for entries that may be copied
};

// What the streams of a run share; outlives them.
struct StreamContext {
    ReadAhead& ahead;
    OutputFile& output;
    RunState& run;
    const PackSettings& settings;
    const std::vector<SourceEntry>& sources;
    bool keepKeys = false; // copies may come
    std::vector<EntryRecord> records;
};

// The stream of the entry, as its body sees it. Used on the run's thread only.
class EntrySink {
public:
    // The next piece of this entry, or null with the run's failure noted.
    virtual std::shared_ptr<PackTask> TakeNext() = 0;
    // Counts a piece in the entry's checksum.
    virtual void AddChecksum(const PackTask& piece) = 0;
    // Hands bytes on and encrypts them in place, unless they come encrypted.
    virtual void Add(std::span<std::uint8_t> bytes, bool encrypted) = 0;
    // Ends the entry: after its data comes the MAC, or the `tail` of one that a worker encrypted.
    virtual void End(std::vector<std::uint8_t> tail) = 0;
    virtual StreamContext& Context() = 0;
    virtual EntryRecord& Record() = 0;
    virtual std::uint64_t Size() const = 0; // of the source, in bytes

protected:
    ~EntrySink() = default;
};

// One entry's data, from its beginning to its end. Used on the run's thread only.
class EntryBody {
public:
    virtual ~EntryBody() = default;

    // Gives the stream more bytes, which stay valid until the next call, or ends it; may do neither
    // when it has to wait. False with the run's failure noted. Throws what the stream throws.
    virtual bool AddMore(EntrySink& stream) = 0;
};

// Pieces that workers have deflated or left as they are.
class PackedBody : public EntryBody {
public:
    explicit PackedBody(std::shared_ptr<PackTask> first) : task_(std::move(first)) {}
    bool AddMore(EntrySink& stream) override;

private:
    std::shared_ptr<PackTask> task_; // the current piece
    bool isAdded_ = false;
};

// The data of an earlier entry of the same content, read back and encrypted with other keys.
class CopiedBody : public EntryBody {
public:
    CopiedBody(EntrySink& stream, const EntryRecord& original);
    bool AddMore(EntrySink& stream) override;

private:
    const EntryRecord& original_;
    std::optional<Ae2Stream> decryption_;
    std::uint64_t copied_ = 0; // bytes of the original, with what encryption put before its data
    ByteBuffer buffer_;
};

// One xz stream over all pieces of a larger file, which come as they were read.
class XzBody : public EntryBody {
public:
    explicit XzBody(std::shared_ptr<PackTask> first) : task_(std::move(first)) {}
    bool AddMore(EntrySink& stream) override;

private:
    bool Feed(EntrySink& stream);

    std::shared_ptr<PackTask> task_; // the current piece
    std::optional<XzStream> xz_;
    ByteBuffer buffer_;
};

} // namespace obarchive
