// The data of one entry as it goes into the zip, put together from its pieces.
#pragma once

#include <deque>
#include <memory>
#include <optional>
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

// The thread of the run. Entries are streamed in order, one at a time, each to its end.
class EntryStream {
public:
    EntryStream(StreamContext& context, std::size_t entry) : context_(context), entry_(entry) {}

    // Up to `length` bytes, 0 at the end, -1 with the run's failure noted. Throws what memory
    // shortage and the platform's cryptography throw.
    std::int64_t Read(std::uint8_t* data, std::size_t length);

private:
    EntryRecord& Record() { return context_.records[entry_]; }
    bool Refill();
    bool TakePiece();
    bool AddPiece(Piece piece);
    bool BeginCopy(std::size_t original);
    bool AddCopied();
    bool AddXz();
    bool BeginXz();
    void BeginEncryption(const PackTask& task);
    void Add(std::span<std::uint8_t> bytes);
    void AddKept(std::vector<std::uint8_t> bytes);
    void End();

    StreamContext& context_;
    const std::size_t entry_;
    bool begun_ = false;
    bool lastPiece_ = false; // no piece is to come
    bool ended_ = false;

    std::shared_ptr<PackTask> task_; // owns what the spans show
    std::vector<std::uint8_t> head_;
    std::vector<std::uint8_t> tail_;
    ByteBuffer buffer_;
    std::deque<std::span<const std::uint8_t>> ready_; // to be handed over

    std::optional<Ae2Stream> encryption_; // of a larger file
    std::optional<XzStream> xz_;
    const EntryRecord* original_ = nullptr; // of a copy
    std::optional<Ae2Stream> decryption_;
    std::uint64_t copied_ = 0;
};

} // namespace obarchive
