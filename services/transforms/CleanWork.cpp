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
CleanOutcome OutcomeFor(std::span<const std::byte> source, CleanOutcome outcome) {
    const bool isOther = outcome == CleanOutcome::Encrypted && !documents::IsPdf(source);
    return isOther ? CleanOutcome::OtherCipher : outcome;
}

// Findings belong to a file that was read.
bool SendFindings(CleanOutcome outcome, const personal::FindingCounter& found,
                  WorkChannel& channel) {
    if (outcome == CleanOutcome::Cleaned && !Send(found.List(), channel)) return false;
    const bool isRead = outcome == CleanOutcome::Cleaned || outcome == CleanOutcome::NothingFound;
    return !isRead || Send(found.Staying(), channel);
}

} // namespace

std::optional<WorkEnd> Clean(const WorkRequest& request, WorkChannel& channel) {
    if (request.SettingsAs<WorkClean>().reserved != 0) return {}; // not a valid record
    WorkFailure failure{};
    const auto source = SourceView::Map(request.source.Get(), failure);
    if (!source) return WorkEnd(failure);
    if (!ReadAhead(source->Bytes(), channel)) return {};
    PictureWatch watch(channel, source->Bytes().size());
    const auto analysis = AnalyzeFile(source->Bytes(), {&watch, request.password.Text()});
    const CleanOutcome outcome = OutcomeOf(analysis);
    if (watch.IsUnread() || !SendFindings(outcome, analysis.found, channel)) return {};
    return outcome == CleanOutcome::Cleaned
               ? WriteTarget(request.target.Get(), analysis.parts.Parts(), watch.Steps(), channel)
               : EndOfWholeFile(OutcomeFor(source->Bytes(), outcome));
}

} // namespace transforms
