#include "services/providers/transforms/Resize.h"

#include <algorithm>
#include <iterator>

#include "services/providers/ui/TextIds.h"

namespace providers {
namespace {

using obcontract::WorkAim;

// Of lossy forms, where the aim leaves the choice: beyond it files grow and nobody sees it.
constexpr std::uint32_t kQuality = 90;

struct AimRow {
    ResizeAim aim;
    WorkAim asked;
    std::uint64_t unit;
};

constexpr AimRow kAims[] = {
    {ResizeAim::LongestEdge, WorkAim::LongestEdge, 1},
    {ResizeAim::Percent, WorkAim::Percent, 1},
    {ResizeAim::BytesEach, WorkAim::Bytes, kBytesOfKilobyte},
};

struct RefusalRow {
    WorkResult result;
    UINT text;
};

constexpr RefusalRow kRefusals[] = {
    {WorkResult::Damaged, OB_TEXT_RESIZE_DAMAGED},
    {WorkResult::TooLarge, OB_TEXT_RESIZE_TOO_LARGE},
    {WorkResult::CannotFit, OB_TEXT_RESIZE_CANNOT},
    {WorkResult::Unreadable, OB_TEXT_UNREADABLE},
    {WorkResult::Unwritable, OB_TEXT_UNWRITABLE},
    {WorkResult::ProcessFailed, OB_TEXT_RESIZE_FAILED},
    {WorkResult::NotStarted, OB_TEXT_NO_WORK_PROCESS},
};

WorkOrder OrderFor(const ResizeSettings& settings) {
    const auto* const row = std::ranges::find(kAims, settings.aim, &AimRow::aim);
    return {obcontract::WorkKind::Resize,
            obcontract::WorkResize{row->asked, kQuality, settings.Number() * row->unit}};
}

} // namespace

bool RefuseResize(StageCall& call, WorkResult result, const std::wstring& path) {
    const auto* const row = std::ranges::find(kRefusals, result, &RefusalRow::result);
    return row != std::end(kRefusals) && Refuse(call, row->text, path);
}

bool ResizePicture(StageCall& call, const std::wstring& path, const std::wstring& folder) {
    auto copy = OpenCopy(call, path, folder);
    if (!copy) return false;
    const auto smaller = NewFile::MakeBeside(*copy, call.run.unfinished);
    if (!smaller) return Refuse(call, OB_TEXT_UNWRITABLE, path);
    const WorkReport report = call.run.process.Run(OrderFor(call.plan.resize), copy->Handle(),
                                                   smaller->Handle(), call.wait);
    if (report.result == WorkResult::Unchanged || report.result == WorkResult::NotSupported) {
        return true;
    }
    if (report.result != WorkResult::Changed) return RefuseResize(call, report.result, path);
    return TakePlace(call, *smaller, *copy, report) || Refuse(call, OB_TEXT_UNWRITABLE, path);
}

} // namespace providers
