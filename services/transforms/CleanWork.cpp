#include "services/transforms/CleanWork.h"

#include <algorithm>
#include <cstdint>
#include <span>

#include "services/transforms/PictureWatch.h"
#include "services/transforms/SourceView.h"
#include "services/transforms/WholeFile.h"
#include "services/transforms/documents/AnyFile.h"
#include "services/transforms/documents/Pdf.h"

namespace transforms {
namespace {

using namespace obcontract;

// False when nobody reads them.
bool Send(const std::vector<Finding>& findings, WorkChannel& channel) {
    return std::ranges::all_of(findings, [&](const Finding& finding) {
        return channel.SendFinding(FindingName(finding.kind), finding.count);
    });
}

// Passwords are taken for PDFs alone.
CleanOutcome OutcomeFor(std::span<const std::byte> source, const CleanedFile& cleaned) {
    const bool isOther = cleaned.outcome == CleanOutcome::Encrypted && !documents::IsPdf(source);
    return isOther ? CleanOutcome::OtherCipher : cleaned.outcome;
}

std::optional<WorkEnd> EndOf(HANDLE target, std::span<const std::byte> source,
                             const CleanedFile& cleaned, std::uint64_t read, WorkChannel& channel) {
    if (cleaned.outcome == CleanOutcome::Cleaned) {
        return WriteTarget(target, std::as_bytes(std::span(cleaned.bytes)), read, channel);
    }
    return EndOfWholeFile(OutcomeFor(source, cleaned));
}

} // namespace

std::optional<WorkEnd> Clean(const WorkRequest& request, WorkChannel& channel) {
    if (request.SettingsAs<WorkClean>().reserved != 0) return {}; // not a valid record
    WorkFailure failure{};
    const auto source = SourceView::Map(request.source.Get(), failure);
    if (!source) return WorkEnd(failure);
    if (!ReadAhead(source->Bytes(), channel)) return {};
    PictureWatch watch(channel, source->Bytes().size());
    const CleanedFile cleaned = CleanFile(source->Bytes(), {&watch, request.password.Text()});
    if (watch.IsUnread() || !Send(cleaned.removed, channel) || !Send(cleaned.stays, channel)) {
        return {};
    }
    return EndOf(request.target.Get(), source->Bytes(), cleaned, watch.Steps(), channel);
}

} // namespace transforms
