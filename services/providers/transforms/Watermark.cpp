#include "services/providers/transforms/Watermark.h"

#include <iterator>
#include <string_view>

#include "services/providers/settings/WatermarkSettings.h"
#include "services/providers/transforms/ChangeCopy.h"
#include "services/providers/transforms/PdfPasswords.h"
#include "services/providers/transforms/Resize.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

using namespace obcontract;

constexpr WorkPlace kPlaces[] = {WorkPlace::TopLeft, WorkPlace::TopRight, WorkPlace::BottomLeft,
                                 WorkPlace::BottomRight, WorkPlace::Centre};
static_assert(std::size(kPlaces) == kWatermarkPlaceCount);
static_assert(kLongestWatermark == kMostWatermarkText);

constexpr RefusalTexts kTexts = {OB_TEXT_WATERMARK_DAMAGED, OB_TEXT_WATERMARK_TOO_LARGE, 0,
                                 OB_TEXT_WATERMARK_FAILED};

WorkOrder OrderFor(const WatermarkSettings& settings) {
    const WorkWatermark record{kPlaces[static_cast<std::size_t>(settings.place)], settings.opacity};
    return {WorkKind::Watermark, record, std::wstring_view(settings.text)};
}

// Asks about a document whose signature would break, or for which no password is taken. About one
// whose password nobody gave, the user has decided.
std::optional<bool> GoesWithout(StageCall& call, WorkResult result, const std::wstring& path) {
    if (NeedsPassword(result)) return true;
    const bool isSigned = result == WorkResult::Signed;
    if (!isSigned && result != WorkResult::OtherCipher) return {};
    const UINT question = isSigned ? OB_TEXT_WATERMARK_SIGNED : OB_TEXT_WATERMARK_ENCRYPTED;
    return Ask(call, question, path);
}

// Whether each picture was made to take so many bytes at most: the watermark takes some more.
bool HasLimit(const StageCall& call) {
    return call.selected.Contains(TransformId::ResizeImages) &&
           call.plan.resize.aim == ResizeAim::BytesEach;
}

} // namespace

bool AddWatermark(StageCall& call, const std::wstring& path, const std::wstring& folder) {
    const auto settings = WatermarkSettings::Load(call.settings);
    return ChangeCopy(call, path, folder, OrderFor(settings), kTexts, &GoesWithout) &&
           (!HasLimit(call) || ResizePicture(call, path, folder));
}

} // namespace providers
