#include "services/archive/zip/EntryStream.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>

namespace obarchive {
namespace {

// The checksum of the data so far and the piece after it.
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

void EntryStream::Add(std::span<std::uint8_t> bytes, bool encrypted) {
    if (bytes.empty()) return;
    if (encryption_ && encrypted) encryption_->AddToCode(bytes);
    if (encryption_ && !encrypted) encryption_->Encrypt(bytes);
    ready_.push_back(bytes);
    Record().packedSize += bytes.size();
}

void EntryStream::AddChecksum(const PackTask& piece) {
    Record().checksum = Joined(Record().checksum, piece);
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

void EntryStream::End(std::vector<std::uint8_t> tail) {
    ended_ = true;
    tail_ = std::move(tail);
    if (encryption_) {
        const auto code = encryption_->Code();
        tail_.assign(code.begin(), code.end());
    }
    if (!tail_.empty()) ready_.push_back(tail_);
    Record().packedSize += tail_.size();
}

std::optional<Piece> EntryStream::TakePiece() {
    std::optional<Piece> piece = context_.ahead.Take();
    if (!piece || piece->entry == entry_) return piece;
    context_.run.Fail(ZipResult::EngineFailed);
    return std::nullopt;
}

std::shared_ptr<PackTask> EntryStream::TakeNext() {
    std::optional<Piece> piece = TakePiece();
    return piece ? std::move(piece->task) : nullptr;
}

// The first piece decides what the entry is made of.
bool EntryStream::Begin() {
    std::optional<Piece> piece = TakePiece();
    if (!piece) return false;
    const PackTask& task = *piece->task;
    Record().position = context_.output.Position();
    Record().packing = task.order.packing;
    BeginEncryption(task);
    if (piece->copyOf) {
        body_ = std::make_unique<CopiedBody>(static_cast<EntrySink&>(*this),
                                             context_.records[*piece->copyOf]);
    } else if (task.order.packing == Packing::Xz && !task.order.IsWhole()) {
        body_ = std::make_unique<XzBody>(std::move(piece->task));
    } else {
        body_ = std::make_unique<PackedBody>(std::move(piece->task));
    }
    return true;
}

std::int64_t EntryStream::Read(std::uint8_t* data, std::size_t length) {
    while (ready_.empty() && !ended_) {
        if (!body_ && !Begin()) return -1;
        if (!body_->AddMore(*this)) return -1;
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
