// The data of one entry as it goes into the zip, put together from its pieces.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include "services/archive/zip/EntryBody.h"
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

    // For the entry's body. The next piece of this entry, or null with the run's failure noted.
    std::shared_ptr<PackTask> TakeNext();
    // Counts a piece in the entry's checksum.
    void AddChecksum(const PackTask& piece);
    // Hands bytes on and encrypts them in place, unless they come encrypted.
    void Add(std::span<std::uint8_t> bytes, bool encrypted);
    // Ends the entry: after its data comes the MAC, or the `tail` of one that a worker encrypted.
    void End(std::vector<std::uint8_t> tail);
    StreamContext& Context() { return context_; }
    EntryRecord& Record() { return context_.records[entry_]; }
    std::uint64_t Size() const { return context_.sources[entry_].facts.size; }

private:
    std::optional<Piece> TakePiece();
    bool Begin();
    void BeginEncryption(const PackTask& task);

    StreamContext& context_;
    const std::size_t entry_;
    bool ended_ = false;
    std::vector<std::uint8_t> head_;
    std::vector<std::uint8_t> tail_;
    std::deque<std::span<const std::uint8_t>> ready_; // to be handed over
    std::optional<Ae2Stream> encryption_;             // of a larger file
    std::unique_ptr<EntryBody> body_;                 // from the first piece on
};

} // namespace obarchive
