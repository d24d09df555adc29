// Reads the sources in order and keeps the workers busy with what comes next.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "services/archive/zip/DuplicateFinder.h"
#include "services/archive/zip/PackTask.h"
#include "services/archive/zip/SourceFile.h"

namespace obarchive {

// Files are cut into blocks of this size. With twice the size a zip is 0.1 per cent smaller, and
// the run needs twice the memory.
constexpr std::size_t kBlockSize = 1024 * 1024;

// Bytes that are read ahead for so many workers.
constexpr std::size_t AheadOf(std::size_t workers) { return (2 * workers + 2) * kBlockSize; }

struct SourceEntry {
    std::wstring path;
    std::string name; // in the zip, UTF-8
    SourceFacts facts;
};

// A piece of an entry, in order.
struct Piece {
    std::size_t entry = 0;
    std::shared_ptr<PackTask> task;
    std::shared_ptr<WorkerPool::Ticket> ticket;
    std::size_t weight = 0; // bytes of memory that it takes while it is ahead
    std::optional<std::size_t>
        copyOf; // the entry with the same content; `task` then made keys only
};

// Used on the run's thread only. At most two blocks for each worker and two more are in memory, and
// a few hundred small files, however many and large the files are.
class ReadAhead {
public:
    // All must outlive it.
    ReadAhead(std::vector<SourceEntry>& sources, const ZipJob& job, const PackSettings& settings,
              std::size_t keySize, RunState& run, WorkerPool& pool);

    // The next piece of all, done. Reads ahead as far as there is room, waits, and reports the
    // progress meanwhile. Nothing with the run's failure noted. Throws what reading throws.
    std::optional<Piece> Take();

private:
    bool Fill();
    bool HasRoom() const;
    bool ReadPiece();
    bool BeginSource();
    bool ReadBlock(ByteBuffer& block);
    bool FindDuplicate();
    bool IsStillTheSame(const ByteBuffer& block);
    std::optional<ContentDigest> HashSource();
    void Submit(PackOrder order, ByteBuffer block);
    void SubmitCopy(std::size_t original);
    void EndSource();
    void PlanPiece(const ByteBuffer& block);
    void MakeKeys();
    bool WaitFor(const Piece& piece);

    std::vector<SourceEntry>& sources_;
    const ZipJob& job_;
    const PackSettings& settings_;
    const std::size_t keySize_;
    RunState& run_;
    WorkerPool& pool_;
    const std::size_t budget_;
    std::size_t held_ = 0; // bytes of the pieces that are ahead

    std::deque<Piece> pieces_;
    std::size_t next_ = 0; // the source that is read, or comes next
    bool reading_ = false;
    SourceFile file_;
    // Of a larger file that is read again: its digest at the first reading, and so far at this one.
    std::optional<ContentDigest> known_;
    std::optional<ContentHash> again_;
    PackOrder order_; // of the next piece of the source that is read
    std::optional<DuplicateFinder> duplicates_;
    BlockCompressor glances_;
};

} // namespace obarchive
