// The data of one entry as it goes into the zip, put together from its pieces.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include "services/archive/zip/EntryBody.h"

namespace obarchive {

// Used on the run's thread only. One entry is read to its end before the next begins.
class EntryStream : private EntrySink {
public:
    EntryStream(StreamContext& context, std::size_t entry) : context_(context), entry_(entry) {}

    // Up to `length` bytes, 0 at the end, -1 with the run's failure noted. Throws what memory
    // shortage and the platform's cryptography throw.
    std::int64_t Read(std::uint8_t* data, std::size_t length);

private:
    // For the entry's body.
    std::shared_ptr<PackTask> TakeNext() override;
    void AddChecksum(const PackTask& piece) override;
    void Add(std::span<std::uint8_t> bytes, bool encrypted) override;
    void End(std::vector<std::uint8_t> tail) override;
    StreamContext& Context() override { return context_; }
    EntryRecord& Record() override { return context_.records[entry_]; }
    std::uint64_t Size() const override { return context_.sources[entry_].facts.size; }

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
