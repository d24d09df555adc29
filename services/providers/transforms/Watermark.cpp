#include "services/providers/transforms/Watermark.h"

#include <iterator>
#include <string_view>

#include "ObLib/Src/Win32/LongPath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
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

WorkOrder PictureOrderFor(const WatermarkSettings& settings, HANDLE picture) {
    const WorkPictureWatermark record{kPlaces[static_cast<std::size_t>(settings.place)],
                                      settings.opacity, 0};
    return WorkOrder(WorkKind::PictureWatermark, record).WithPicture(picture);
}

// It is the user's own file, which is read alone. Empty for what is no file on a disk, such as a
// pipe: the work process takes no other.
ObLib::UniqueKernelHandle OpenPicture(const WatermarkSettings& settings) {
    ObLib::UniqueKernelHandle picture(
        CreateFileW(ObLib::WithLongPathPrefix(settings.picture).c_str(), GENERIC_READ,
                    FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                    FILE_ATTRIBUTE_NORMAL, nullptr));
    if (picture && GetFileType(picture.Get()) != FILE_TYPE_DISK) picture.Reset();
    return picture;
}

// Stops the run with the sentence about the watermark's own picture.
bool RefusePicture(StageCall& call, UINT text) {
    return Refuse(call, text, WatermarkSettings::Load(call.settings).picture);
}

// Asks about a document whose signature would break, or for which no password is taken. About one
// whose password nobody gave, the user has decided.
std::optional<bool> GoesWithout(StageCall& call, WorkResult result, const std::wstring& path) {
    if (NeedsPassword(result)) return true;
    if (result == WorkResult::BadPicture) return RefusePicture(call, OB_TEXT_WATERMARK_BAD_PICTURE);
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
    if (settings.usesPicture && settings.picture.empty())
        return RefusePicture(call, OB_TEXT_WATERMARK_CHOOSE);
    const auto picture = settings.usesPicture ? OpenPicture(settings) : ObLib::UniqueKernelHandle();
    if (settings.usesPicture && !picture) return RefusePicture(call, OB_TEXT_WATERMARK_NO_PICTURE);
    const WorkOrder order = picture ? PictureOrderFor(settings, picture.Get()) : OrderFor(settings);
    return ChangeCopy(call, path, folder, order, kTexts, &GoesWithout) &&
           (!HasLimit(call) || ResizePicture(call, path, folder));
}

} // namespace providers
