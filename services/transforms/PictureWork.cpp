#include "services/transforms/PictureWork.h"

#include <algorithm>
#include <iterator>

#include "services/transforms/PictureFiles.h"
#include "services/transforms/PictureWatch.h"
#include "services/transforms/pictures/Resize.h"

namespace transforms {
namespace {

using namespace obcontract;

struct AimRow {
    WorkAim aim;
    ResizeAim meant;
    std::uint64_t most;
};

constexpr AimRow kAims[] = {
    {WorkAim::LongestEdge, ResizeAim::LongestEdge, 0xffffffff},
    {WorkAim::Percent, ResizeAim::Percent, 99},
    {WorkAim::Bytes, ResizeAim::Bytes, ~std::uint64_t{0}},
};

// Nothing for values that the contract lacks.
std::optional<ResizeRequest> Asked(const WorkResize& settings) {
    const auto row = std::ranges::find(kAims, settings.aim, &AimRow::aim);
    if (row == std::end(kAims) || settings.value == 0 || settings.value > row->most) return {};
    if (settings.quality < 1 || settings.quality > 100) return {};
    return ResizeRequest{row->meant, settings.value, static_cast<int>(settings.quality)};
}

struct FailureRow {
    PictureOutcome outcome;
    WorkFailure failure;
};

constexpr FailureRow kFailures[] = {
    {PictureOutcome::Damaged, WorkFailure::Damaged},
    {PictureOutcome::TooLarge, WorkFailure::TooLarge},
    {PictureOutcome::CannotFit, WorkFailure::CannotFit},
    {PictureOutcome::ReadFailed, WorkFailure::Unreadable},
    {PictureOutcome::WriteFailed, WorkFailure::Unwritable},
    {PictureOutcome::OutOfMemory, WorkFailure::TooLarge},
};

} // namespace

std::optional<WorkEnd> EndOfPicture(PictureOutcome outcome, std::uint64_t size) {
    switch (outcome) {
    case PictureOutcome::Written:
        return WorkEnd(WorkOutcome::Changed, size);
    case PictureOutcome::Unchanged:
        return WorkEnd(WorkOutcome::Unchanged);
    case PictureOutcome::Unsupported:
        return WorkEnd(WorkOutcome::NotSupported);
    case PictureOutcome::Cancelled:
        return {};
    default:
        break;
    }
    const auto row = std::ranges::find(kFailures, outcome, &FailureRow::outcome);
    return WorkEnd(row == std::end(kFailures) ? WorkFailure::Damaged : row->failure);
}

std::optional<WorkEnd> Resize(const WorkRequest& request, WorkChannel& channel) {
    const auto asked = Asked(request.SettingsAs<WorkResize>());
    if (!asked) return {};
    FileSource source(request.source.Get());
    if (!source.IsOpen()) return WorkEnd(WorkFailure::Unreadable);
    FileTarget target(request.target.Get());
    PictureWatch watch(channel);
    PictureOutcome outcome = ResizePicture(source, target, *asked, watch.Control());
    if (outcome == PictureOutcome::Written && !target.Flush())
        outcome = PictureOutcome::WriteFailed;
    return EndOfPicture(outcome, target.Size());
}

} // namespace transforms
