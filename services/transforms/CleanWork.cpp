#include "services/transforms/CleanWork.h"

#include "ObLib/Src/Win32/WholeTransfer.h"
#include "services/transforms/SourceView.h"
#include "services/transforms/personal/PersonalData.h"

namespace transforms {
namespace {

using namespace obcontract;

WorkEnd Written(HANDLE target, const CleanedFile& cleaned) {
    if (!target) return WorkEnd(WorkOutcome::Changed);
    if (!ObLib::WriteWhole(target, cleaned.bytes.data(), cleaned.bytes.size())) {
        return WorkEnd(WorkFailure::Unwritable);
    }
    return WorkEnd(WorkOutcome::Changed, cleaned.bytes.size());
}

WorkEnd EndOf(HANDLE target, const CleanedFile& cleaned) {
    switch (cleaned.outcome) {
    case CleanOutcome::Cleaned:
        return Written(target, cleaned);
    case CleanOutcome::NothingFound:
        return WorkEnd(WorkOutcome::Unchanged);
    case CleanOutcome::NotSupported:
        return WorkEnd(WorkOutcome::NotSupported);
    case CleanOutcome::Damaged:
        break;
    }
    return WorkEnd(WorkFailure::Damaged);
}

} // namespace

std::optional<WorkEnd> Clean(const WorkRequest& request, WorkChannel& channel) {
    WorkFailure failure{};
    const auto source = SourceView::Map(request.source.Get(), failure);
    if (!source) return WorkEnd(failure);
    const CleanedFile cleaned = RemovePersonalData(source->Bytes());
    for (const Finding& finding : cleaned.removed) {
        if (!channel.SendFinding(FindingName(finding.kind), finding.count)) return {};
    }
    return EndOf(request.target.Get(), cleaned);
}

} // namespace transforms
