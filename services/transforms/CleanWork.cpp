#include "services/transforms/CleanWork.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "ObLib/Src/Win32/WholeTransfer.h"
#include "services/transforms/SourceView.h"
#include "services/transforms/documents/AnyFile.h"

namespace transforms {
namespace {

using namespace obcontract;

constexpr std::size_t kBlock = std::size_t{4} << 20; // a slow disk takes seconds for it

// Has the system read the file, with a report after each block: a slow disk isn't a process that
// hangs. False when nobody reads the reports.
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

// Writes the result, with a report after each block. `read` is what ReadAhead reported at last.
std::optional<WorkEnd> Written(HANDLE target, std::span<const std::byte> bytes, std::uint64_t read,
                               WorkChannel& channel) {
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

// False when nobody reads them.
bool Send(const std::vector<Finding>& findings, WorkChannel& channel) {
    return std::ranges::all_of(findings, [&](const Finding& finding) {
        return channel.SendFinding(FindingName(finding.kind), finding.count);
    });
}

std::optional<WorkEnd> EndOf(HANDLE target, const CleanedFile& cleaned, std::uint64_t read,
                             WorkChannel& channel) {
    switch (cleaned.outcome) {
    case CleanOutcome::Cleaned:
        return Written(target, std::as_bytes(std::span(cleaned.bytes)), read, channel);
    case CleanOutcome::NothingFound:
        return WorkEnd(WorkOutcome::Unchanged);
    case CleanOutcome::NotSupported:
        return WorkEnd(WorkOutcome::NotSupported);
    case CleanOutcome::TooLarge:
        return WorkEnd(WorkFailure::TooLarge);
    case CleanOutcome::Encrypted:
        return WorkEnd(WorkFailure::Encrypted);
    case CleanOutcome::Signed:
        return WorkEnd(WorkFailure::Signed);
    case CleanOutcome::Damaged:
        break;
    }
    return WorkEnd(WorkFailure::Damaged);
}

} // namespace

std::optional<WorkEnd> Clean(const WorkRequest& request, WorkChannel& channel) {
    if (request.SettingsAs<WorkClean>().reserved != 0) return {}; // not a valid record
    WorkFailure failure{};
    const auto source = SourceView::Map(request.source.Get(), failure);
    if (!source) return WorkEnd(failure);
    if (!ReadAhead(source->Bytes(), channel)) return {};
    const CleanedFile cleaned = CleanFile(source->Bytes());
    if (!Send(cleaned.removed, channel) || !Send(cleaned.stays, channel)) return {};
    return EndOf(request.target.Get(), cleaned, source->Bytes().size(), channel);
}

} // namespace transforms
