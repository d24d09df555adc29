#include "services/transforms/DatesWork.h"

#include "services/transforms/PictureWatch.h"
#include "services/transforms/SourceView.h"
#include "services/transforms/WholeFile.h"
#include "services/transforms/documents/PdfDates.h"

namespace transforms {

using namespace obcontract;

std::optional<WorkEnd> RemoveDates(const WorkRequest& request, WorkChannel& channel) {
    if (request.SettingsAs<WorkPlain>().reserved != 0) return {};
    WorkFailure failure{};
    const auto source = SourceView::Map(request.source.Get(), failure);
    if (!source) return WorkEnd(failure);
    if (!ReadAhead(source->Bytes(), channel)) return {};
    PictureWatch watch(channel, source->Bytes().size());
    const auto analysis = documents::RemovePdfDates(source->Bytes(), {&watch, {}});
    if (watch.IsUnread()) return {};
    const CleanOutcome outcome = OutcomeOf(analysis);
    return outcome == CleanOutcome::Cleaned
               ? WriteTarget(request.target.Get(), analysis.parts.Parts(), watch.Steps(), channel)
               : EndOfWholeFile(outcome);
}

} // namespace transforms
