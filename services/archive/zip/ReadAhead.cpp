#include "services/archive/zip/ReadAhead.h"

#include <algorithm>

#include "services/archive/compress/AdaptiveDeflate.h"

namespace obarchive {
namespace {

// Small files weigh little, and so are bounded by number.
constexpr std::size_t kMostPieces = 256;
constexpr DWORD kReportAfter = 50; // milliseconds

// A worker packs so much in the time that it takes to wake another one.
constexpr std::size_t kSmall = 16 * 1024;

// Below this, compressing is as quick as looking.
constexpr std::size_t kWorthALook = 64 * 1024;

std::vector<std::uint64_t> Sizes(const std::vector<SourceEntry>& sources) {
    std::vector<std::uint64_t> sizes;
    for (const SourceEntry& source : sources) sizes.push_back(source.facts.size);
    return sizes;
}

} // namespace

ReadAhead::ReadAhead(std::vector<SourceEntry>& sources, const ZipJob& job,
                     const PackSettings& settings, std::size_t keySize, RunState& run,
                     WorkerPool& pool)
    : sources_(sources), job_(job), settings_(settings), keySize_(keySize), run_(run), pool_(pool),
      budget_(AheadOf(pool.Size())), file_(run) {
    if (job.duplicateReferences) duplicates_.emplace(Sizes(sources));
}

bool ReadAhead::HasRoom() const { return held_ < budget_ && pieces_.size() < kMostPieces; }

bool ReadAhead::Fill() {
    while (HasRoom() && next_ < sources_.size()) {
        if (!ReadPiece()) return false;
    }
    return true;
}

std::optional<ContentDigest> ReadAhead::HashSource() {
    ContentHash hash;
    ByteBuffer block = settings_.spare->Take(kBlockSize);
    do {
        if (!file_.Read(block, kBlockSize, false)) return std::nullopt;
        hash.Add(block.Bytes());
    } while (!file_.IsAtEnd());
    settings_.spare->Give(std::move(block));
    return hash.Finish();
}

// Larger files are read once to see whether they are known, and then again if they aren't. True
// also when there is nothing to find; `reading_` is over when the file was a duplicate.
bool ReadAhead::FindDuplicate() {
    SourceEntry& source = sources_[next_];
    const std::optional<ContentDigest> digest = HashSource();
    if (!digest) return false;
    const auto original = duplicates_->FirstOf(source.facts.size, *digest, next_);
    if (!original) {
        known_ = digest;
        again_.emplace();
        return file_.Open(source.path, source.facts, true);
    }
    run_.bytesRead += source.facts.size;
    SubmitCopy(*original);
    return run_.Report();
}

// The bytes that are stored must be those that the duplicates were compared with. A file's time may
// be too coarse to show a change between the two readings.
bool ReadAhead::IsStillTheSame(const ByteBuffer& block) {
    if (!again_) return true;
    again_->Add(block.Bytes());
    if (!file_.IsAtEnd()) return true;
    const bool same = again_->Finish() == *known_;
    again_.reset();
    if (!same) run_.Fail(ZipResult::SourceChanged, run_.file);
    return same;
}

bool ReadAhead::BeginSource() {
    SourceEntry& source = sources_[next_];
    if (!file_.Open(source.path, source.facts, false)) return false;
    reading_ = true;
    const bool zipx = job_.compressionMethod == obcontract::kCompressionZipx;
    order_ = {};
    order_.packing = zipx ? Packing::Xz : Packing::Deflate;
    order_.keySize = keySize_;
    const bool hash = duplicates_ && duplicates_->MayHaveDuplicate(source.facts.size);
    if (source.facts.size == 0) return run_.Report();
    return !hash || source.facts.size <= kBlockSize || FindDuplicate();
}

bool ReadAhead::ReadBlock(ByteBuffer& block) {
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(kBlockSize, file_.Left()));
    block = settings_.spare->Take(size);
    return file_.Read(block, size, true);
}

// What is only stored has its place in the stream beforehand, so that each piece can be encrypted
// by the worker that gets it.
void ReadAhead::MakeKeys() {
    if (keySize_ == 0) return;
    order_.keys = std::make_shared<const Ae2Keys>(settings_.keys->Make());
}

// What the worker is to do with the next block: the first block of a file decides for all of them.
void ReadAhead::PlanPiece(const ByteBuffer& block) {
    const bool look = order_.first && block.Size() > kWorthALook;
    if (look && !DoesShrink(block.Bytes(), glances_)) order_.packing = Packing::Store;
    const bool goesOn = order_.first && !order_.last;
    if (goesOn && order_.packing == Packing::Store) MakeKeys();
}

void ReadAhead::EndSource() {
    file_.Close();
    reading_ = false;
    ++next_;
}

void ReadAhead::Submit(PackOrder order, ByteBuffer block) {
    const std::size_t weight = block.Capacity();
    held_ += weight;
    auto task = std::make_shared<PackTask>(order, settings_, std::move(block));
    if (order.last) task->source = file_.Release();
    auto ticket = pool_.Submit(task, weight < kSmall);
    pieces_.push_back({next_, std::move(task), std::move(ticket), weight, std::nullopt});
}

void ReadAhead::SubmitCopy(std::size_t original) {
    PackOrder keysOnly;
    keysOnly.packing = Packing::Store;
    keysOnly.last = false;
    keysOnly.keySize = keySize_;
    Submit(keysOnly, {});
    pieces_.back().copyOf = original;
    EndSource();
}

bool ReadAhead::ReadPiece() {
    if (!reading_ && !BeginSource()) return false;
    if (!reading_) return true; // it was a copy
    ByteBuffer block;
    if (!ReadBlock(block) || !IsStillTheSame(block)) return false;
    order_.last = file_.IsAtEnd();
    if (order_.IsWhole() && duplicates_ && duplicates_->MayHaveDuplicate(block.Size())) {
        ContentHash hash;
        hash.Add(block.Bytes());
        const auto original = duplicates_->FirstOf(block.Size(), hash.Finish(), next_);
        if (original) return SubmitCopy(*original), true;
    }
    PlanPiece(block);
    Submit(order_, std::move(block));
    order_.first = false;
    order_.offset += kBlockSize;
    if (order_.last) EndSource();
    return true;
}

bool ReadAhead::WaitFor(const Piece& piece) {
    for (;;) {
        switch (pool_.Wait(*piece.ticket, kReportAfter)) {
        case TaskState::Done:
            return true;
        case TaskState::Failed:
            run_.Fail(ZipResult::EngineFailed);
            return false;
        case TaskState::NoMemory:
            run_.Fail(ZipResult::OutOfMemory);
            return false;
        case TaskState::Waiting:
            if (!run_.Report()) return false;
        }
    }
}

std::optional<Piece> ReadAhead::Take() {
    if (!Fill() || pieces_.empty()) {
        run_.Fail(ZipResult::EngineFailed);
        return std::nullopt;
    }
    if (!WaitFor(pieces_.front())) return std::nullopt;
    held_ -= pieces_.front().weight;
    Piece piece = std::move(pieces_.front());
    pieces_.pop_front();
    return piece;
}

} // namespace obarchive
