#include "services/providers/transforms/Resize.h"

#include <algorithm>
#include <iterator>

#include "services/providers/transforms/ChangeCopy.h"
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

constexpr RefusalTexts kTexts = {OB_TEXT_RESIZE_DAMAGED, OB_TEXT_RESIZE_TOO_LARGE,
                                 OB_TEXT_RESIZE_CANNOT, OB_TEXT_RESIZE_FAILED};

WorkOrder OrderFor(const ResizeSettings& settings) {
    const auto* const row = std::ranges::find(kAims, settings.aim, &AimRow::aim);
    return {obcontract::WorkKind::Resize,
            obcontract::WorkResize{row->asked, kQuality, settings.Number() * row->unit}};
}

} // namespace

bool RefuseResize(StageCall& call, WorkResult result, const std::wstring& path) {
    return RefuseResult(call, result, kTexts, path);
}

bool ResizePicture(StageCall& call, const std::wstring& path, const std::wstring& folder) {
    return ChangeCopy(call, path, folder, OrderFor(call.plan.resize), kTexts);
}

} // namespace providers
