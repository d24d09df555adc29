#include "services/transforms/WholeFile.h"

#include <algorithm>
#include <iterator>

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

} // namespace

bool ReadAhead(std::span<const std::byte> bytes, WorkChannel& channel) noexcept {
    constexpr std::size_t kPage = 4096;
    for (std::size_t done = 0; done < bytes.size(); done += kBlock) {
        const auto block = bytes.subspan(done, std::min(kBlock, bytes.size() - done));
        for (std::size_t at = 0; at < block.size(); at += kPage) {
            static_cast<void>(*static_cast<const volatile std::byte*>(&block[at]));
        }
        // Writing is the other half, of a size that isn't known yet.
        if (!channel.SendProgress(done + block.size(), 2 * std::uint64_t{bytes.size()})) {
            return false;
        }
    }
    return true;
}

std::optional<WorkEnd> WriteTarget(HANDLE target, std::span<const std::byte> bytes,
                                   std::uint64_t read, WorkChannel& channel) {
    if (!target) return WorkEnd(WorkOutcome::Changed);
    for (std::size_t done = 0; done < bytes.size();) {
        const std::size_t size = std::min(kBlock, bytes.size() - done);
        if (!ObLib::WriteWhole(target, bytes.data() + done, size)) {
            return WorkEnd(WorkFailure::Unwritable);
        }
        done += size;
        if (!channel.SendProgress(read + done, read + bytes.size())) return {};
    }
    return WorkEnd(WorkOutcome::Changed, bytes.size());
}

WorkEnd EndOfWholeFile(CleanOutcome outcome) noexcept {
    if (outcome == CleanOutcome::NotSupported) return WorkEnd(WorkOutcome::NotSupported);
    if (outcome == CleanOutcome::NothingFound) return WorkEnd(WorkOutcome::Unchanged);
    const auto* const row = std::ranges::find(kFailures, outcome, &FailureRow::outcome);
    return WorkEnd(row == std::end(kFailures) ? WorkFailure::Damaged : row->failure);
}

} // namespace transforms
