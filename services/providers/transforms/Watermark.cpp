#include "services/providers/transforms/Watermark.h"

#include <iterator>
#include <string_view>

#include "ObLib/Src/Win32/LongPath.h"
#include "services/providers/transforms/FitNotes.h"
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

bool AddNow(StageCall& call, const WatermarkOrder& order, const std::wstring& path,
            const std::wstring& folder) {
    return ChangeCopy(call, path, folder, order.ForFile(), kTexts, &GoesWithout) &&
           (!HasLimit(call) || ResizePicture(call, path, folder));
}

} // namespace

std::optional<WatermarkOrder> WatermarkOrder::Load(StageCall& call) {
    WatermarkOrder order;
    order.settings_ = WatermarkSettings::Load(call.settings);
    if (!order.settings_.usesPicture) return order;
    if (order.settings_.picture.empty()) {
        RefusePicture(call, OB_TEXT_WATERMARK_CHOOSE);
        return {};
    }
    order.picture_ = OpenPicture(order.settings_);
    if (order.picture_) return order;
    RefusePicture(call, OB_TEXT_WATERMARK_NO_PICTURE);
    return {};
}

WorkOrder WatermarkOrder::Of(WorkKind text, WorkKind picture) const {
    const WorkPlace place = kPlaces[static_cast<std::size_t>(settings_.place)];
    if (!picture_)
        return {text, WorkWatermark{place, settings_.opacity}, std::wstring_view(settings_.text)};
    return WorkOrder(picture, WorkPictureWatermark{place, settings_.opacity, 0})
        .WithPicture(picture_.Get());
}

WorkOrder WatermarkOrder::ForFile() const {
    return Of(WorkKind::Watermark, WorkKind::PictureWatermark);
}

WorkOrder WatermarkOrder::ForFit() const {
    return Of(WorkKind::FitWatermark, WorkKind::FitPictureWatermark);
}

bool RefuseWatermark(StageCall& call, WorkResult result, const std::wstring& path) {
    if (result == WorkResult::BadPicture) return RefusePicture(call, OB_TEXT_WATERMARK_BAD_PICTURE);
    return RefuseResult(call, result, kTexts, path);
}

StepResult StampPicture(StageCall& call, const WatermarkOrder& order, HANDLE source, NewFile& made,
                        const std::wstring& path) {
    const WorkReport report =
        call.run.process.Run(order.ForFile(), source, made.Handle(), call.wait);
    if (report.result == WorkResult::Unchanged || report.result == WorkResult::NotSupported)
        return StepResult::Passed;
    if (report.result == WorkResult::Changed && report.size != 0 && report.size == made.Size())
        return StepResult::Made;
    const bool isImpossible = report.result == WorkResult::Changed;
    RefuseWatermark(call, isImpossible ? WorkResult::ProcessFailed : report.result, path);
    return StepResult::Stopped;
}

bool AddWatermark(StageCall& call, const std::wstring& path, const std::wstring& folder) {
    const auto order = WatermarkOrder::Load(call);
    if (!order) return false;
    switch (NoteForFit(call, path, folder, WorkPhotoKinds::None, &FitNote::isStamped)) {
    case Noted::Yes:
        return true;
    case Noted::Stopped:
        return false;
    default:
        return AddNow(call, *order, path, folder);
    }
}

} // namespace providers
