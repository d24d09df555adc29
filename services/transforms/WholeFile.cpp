#include "services/transforms/WholeFile.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "ObLib/Src/Win32/WholeTransfer.h"

namespace transforms {
namespace {

using namespace obcontract;

constexpr std::size_t kBlock = std::size_t{4} << 20; // a slow disk takes seconds for it

struct FailureRow {
    CleanOutcome outcome;
    WorkFailure failure;
};

constexpr FailureRow kFailures[] = {
    {CleanOutcome::TooLarge, WorkFailure::TooLarge},
    {CleanOutcome::Encrypted, WorkFailure::Encrypted},
    {CleanOutcome::Signed, WorkFailure::Signed},
    {CleanOutcome::Locked, WorkFailure::Locked},
    {CleanOutcome::OtherCipher, WorkFailure::OtherCipher},
};

// Puts small parts together, so that a file of thousands of them isn't as many calls.
class TargetWriter {
public:
    TargetWriter(HANDLE target, std::uint64_t read, std::uint64_t size, WorkChannel& channel)
        : target_(target), read_(read), size_(size), channel_(channel) {
        small_.reserve(kSmall);
    }

    bool Write(std::span<const std::byte> part) {
        if (part.size() < kSmall - small_.size()) {
            small_.insert(small_.end(), part.begin(), part.end());
            return true;
        }
        return Flush() && WriteBlocks(part);
    }
    bool Flush() {
        const bool done = WriteBlocks(small_);
        small_.clear();
        return done;
    }
    // Why nothing more is written.
    std::optional<WorkEnd> End() const {
        return isUnread_ ? std::nullopt : std::optional(WorkEnd(WorkFailure::Unwritable));
    }

private:
    static constexpr std::size_t kSmall = std::size_t{64} << 10;

    bool WriteBlocks(std::span<const std::byte> bytes) {
        while (!bytes.empty()) {
            const auto block = bytes.first(std::min(kBlock, bytes.size()));
            if (!ObLib::WriteWhole(target_, block.data(), block.size())) return false;
            done_ += block.size();
            if (!Report()) return false;
            bytes = bytes.subspan(block.size());
        }
        return true;
    }
    // After each block's worth, and at the end.
    bool Report() {
        if (done_ - reported_ < kBlock && done_ != size_) return true;
        reported_ = done_;
        isUnread_ = !channel_.SendProgress(read_ + done_, read_ + size_);
        return !isUnread_;
    }

    HANDLE target_;
    std::uint64_t read_, size_, done_ = 0, reported_ = 0;
    WorkChannel& channel_;
    bool isUnread_ = false;
    std::vector<std::byte> small_;
};

} // namespace

bool ReadAhead(std::span<const std::byte> bytes, WorkChannel& channel,
               std::uint64_t before) noexcept {
    constexpr std::size_t kPage = 4096;
    for (std::size_t done = 0; done < bytes.size(); done += kBlock) {
        const auto block = bytes.subspan(done, std::min(kBlock, bytes.size() - done));
        for (std::size_t at = 0; at < block.size(); at += kPage) {
            static_cast<void>(*static_cast<const volatile std::byte*>(&block[at]));
        }
        // Writing is the other half, of a size that isn't known yet.
        if (!channel.SendProgress(before + done + block.size(),
                                  before + 2 * std::uint64_t{bytes.size()})) {
            return false;
        }
    }
    return true;
}

std::optional<WorkEnd> WriteTarget(HANDLE target, std::span<const std::span<const std::byte>> parts,
                                   std::uint64_t read, WorkChannel& channel) {
    if (!target) return WorkEnd(WorkOutcome::Changed);
    std::uint64_t size = 0;
    for (const auto part : parts) size += part.size();
    TargetWriter writer(target, read, size, channel);
    const bool done = std::ranges::all_of(
        parts, [&](std::span<const std::byte> part) { return writer.Write(part); });
    if (!done || !writer.Flush()) return writer.End();
    return WorkEnd(WorkOutcome::Changed, size);
}

WorkEnd EndOfWholeFile(CleanOutcome outcome) noexcept {
    if (outcome == CleanOutcome::NotSupported) return WorkEnd(WorkOutcome::NotSupported);
    if (outcome == CleanOutcome::NothingFound) return WorkEnd(WorkOutcome::Unchanged);
    const auto* const row = std::ranges::find(kFailures, outcome, &FailureRow::outcome);
    return WorkEnd(row == std::end(kFailures) ? WorkFailure::Damaged : row->failure);
}

} // namespace transforms
