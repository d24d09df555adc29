#include "services/archive/zip/EntryStream.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>

namespace obarchive {
namespace {

constexpr std::size_t kCopyPiece = 256 * 1024;

// The checksum of what came before and the piece behind it.
std::uint32_t Joined(std::uint32_t before, const PackTask& piece) {
    if (piece.order.first) return piece.checksum;
    return static_cast<std::uint32_t>(
        crc32_combine(before, piece.checksum, static_cast<z_off_t>(piece.rawSize)));
}

std::vector<std::uint8_t> HeadOf(const Ae2Keys& keys) {
    const auto head = keys.Head();
    return {head.begin(), head.begin() + static_cast<std::ptrdiff_t>(keys.HeadSize())};
}

} // namespace

// Encrypts in place, where that isn't done yet.
void EntryStream::Add(std::span<std::uint8_t> bytes) {
    if (bytes.empty()) return;
    const bool encrypted = task_ && task_->order.keys;
    if (encryption_ && encrypted) encryption_->AddToCode(bytes);
    if (encryption_ && !encrypted) encryption_->Encrypt(bytes);
    ready_.push_back(bytes);
    Record().packedSize += bytes.size();
}

void EntryStream::BeginEncryption(const PackTask& task) {
    if (!task.keys) return;
    if (context_.keepKeys) Record().keys = task.keys;
    if (task.order.IsWhole()) {
        head_ = task.head;
    } else {
        head_ = HeadOf(*task.keys);
        encryption_.emplace(*context_.settings.algorithms, *task.keys);
    }
    ready_.push_back(head_);
    Record().packedSize += head_.size();
}

// The code behind the data.
void EntryStream::End() {
    ended_ = true;
    if (encryption_) {
        const auto code = encryption_->Code();
        tail_.assign(code.begin(), code.end());
    } else if (task_) {
        tail_ = task_->tail;
    }
    if (!tail_.empty()) ready_.push_back(tail_);
    Record().packedSize += tail_.size();
}

bool EntryStream::BeginXz() {
    xz_.emplace();
    buffer_ = ByteBuffer(kCopyPiece);
    if (xz_->Begin(context_.sources[entry_].facts.size)) return true;
    context_.run.Fail(ZipResult::OutOfMemory);
    return false;
}

bool EntryStream::BeginCopy(std::size_t original) {
    original_ = &context_.records[original];
    Record().checksum = original_->checksum;
    Record().packing = original_->packing;
    lastPiece_ = true;
    buffer_ = ByteBuffer(kCopyPiece);
    if (!original_->keys) return true;
    decryption_.emplace(*context_.settings.algorithms, *original_->keys);
    copied_ = original_->keys->HeadSize();
    return true;
}

bool EntryStream::AddPiece(Piece piece) {
    task_ = std::move(piece.task);
    const PackOrder& order = task_->order;
    if (order.first) {
        Record().position = context_.output.Position();
        Record().packing = order.packing;
        BeginEncryption(*task_);
        if (piece.copyOf) return BeginCopy(*piece.copyOf);
    }
    Record().checksum = Joined(Record().checksum, *task_);
    lastPiece_ = order.last;
    if (order.packing != Packing::Xz || order.IsWhole()) {
        Add(task_->Body());
        if (lastPiece_) End();
        return true;
    }
    if (order.first && !BeginXz()) return false;
    xz_->Feed(task_->raw.Bytes(), order.last);
    return true;
}

bool EntryStream::TakePiece() {
    std::optional<Piece> piece = context_.ahead.Take();
    if (!piece) return false;
    if (piece->entry == entry_) return AddPiece(std::move(*piece));
    context_.run.Fail(ZipResult::EngineFailed);
    return false;
}

bool EntryStream::AddXz() {
    if (!xz_->Advance(buffer_)) {
        context_.run.Fail(ZipResult::EngineFailed);
        return false;
    }
    Add(buffer_.Bytes());
    if (xz_->HasEnded()) End();
    return context_.run.Report();
}

bool EntryStream::AddCopied() {
    const std::uint64_t end = original_->packedSize - (decryption_ ? kAe2CodeSize : 0);
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(kCopyPiece, end - copied_));
    if (count == 0) return End(), true;
    static_cast<void>(buffer_.Resize(count));
    if (!context_.output.ReadAt(original_->position + copied_, buffer_.Data(), count)) {
        context_.run.Fail(context_.output.LastFailure());
        return false;
    }
    copied_ += count;
    if (decryption_) decryption_->Decrypt(buffer_.Bytes());
    Add(buffer_.Bytes());
    return context_.run.Report();
}

bool EntryStream::Refill() {
    if (original_) return AddCopied();
    if (xz_ && !xz_->IsUsedUp()) return AddXz();
    return TakePiece();
}

std::int64_t EntryStream::Read(std::uint8_t* data, std::size_t length) {
    while (ready_.empty() && !ended_) {
        if (!Refill()) return -1;
    }
    std::size_t given = 0;
    while (given < length && !ready_.empty()) {
        std::span<const std::uint8_t>& first = ready_.front();
        const std::size_t count = std::min(length - given, first.size());
        std::memcpy(data + given, first.data(), count);
        given += count;
        first = first.subspan(count);
        if (first.empty()) ready_.pop_front();
    }
    return static_cast<std::int64_t>(given);
}

} // namespace obarchive
