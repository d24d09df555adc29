#include "services/providers/transforms/ConvertPhotos.h"

#include <algorithm>
#include <string_view>

#include "services/providers/files/FirstBytes.h"
#include "services/providers/files/ResultName.h"
#include "services/providers/transforms/FitNotes.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

// The finding that is sent for a photo that nothing on the machine decodes.
constexpr char kNoDecoder[] = "no-decoder";

constexpr RefusalTexts kTexts = {OB_TEXT_PHOTO_DAMAGED, OB_TEXT_PHOTO_TOO_LARGE, 0,
                                 OB_TEXT_PHOTO_FAILED};

// By what is in the file: the work process may have reported anything. Null when the file is
// neither.
const wchar_t* ExtensionOf(HANDLE file) {
    constexpr std::string_view kJpeg = "\xFF\xD8\xFF";
    constexpr std::string_view kPng = "\x89PNG\r\n\x1A\n";
    const std::string begin = FirstBytes(file, kPng.size());
    if (begin.starts_with(kJpeg)) return L"jpg";
    return begin == kPng ? L"png" : nullptr;
}

bool HasNameOf(const std::wstring& path, const std::wstring& extension) {
    return HasExtension(path, extension) || (extension == L"jpg" && HasExtension(path, L"jpeg"));
}

bool IsPhoto(const NewFile& made) { return ExtensionOf(made.Handle()) != nullptr; }

bool ConvertNow(StageCall& call, std::wstring& path, const std::wstring& folder) {
    auto copy = OpenCopy(call, path, folder);
    if (!copy) return false;
    const auto made = NewFile::MakeBeside(*copy, call.run.unfinished);
    if (!made) return Refuse(call, OB_TEXT_UNWRITABLE, path);
    const StepResult step = MakePhoto(call, copy->Handle(), *made, path);
    return step == StepResult::Made ? PlacePhoto(call, *made, *copy, path)
                                    : step == StepResult::Passed;
}

// For a file whose result would have too long a path, before the work: one that isn't to be
// converted goes out as it is.
bool PassUnlessPhoto(StageCall& call, const std::wstring& path, const std::wstring& folder,
                     obcontract::WorkPhotoKinds kinds) {
    if (kinds == obcontract::WorkPhotoKinds::None) return true;
    const auto copy = OpenCopy(call, path, folder);
    if (!copy) return false;
    const WorkResult result = LookAtPicture(call, *copy, kinds);
    return result == WorkResult::Unchanged || result == WorkResult::NotSupported ||
           Refuse(call, OB_TEXT_PATH_TOO_LONG, path);
}

} // namespace

bool RefusePhoto(StageCall& call, WorkResult result, const std::wstring& path) {
    return RefuseResult(call, result, kTexts, path);
}

std::optional<ResultKind> PhotoKindOf(const NewFile& made, const std::wstring& path) {
    const wchar_t* const extension = ExtensionOf(made.Handle());
    if (!extension) return {};
    return ResultKind{extension, HasNameOf(path, extension)};
}

bool PlacePhoto(StageCall& call, NewFile& made, WorkingCopy& copy, std::wstring& path) {
    const auto kind = PhotoKindOf(made, path);
    if (!kind) return RefusePhoto(call, WorkResult::ProcessFailed, path);
    return PlaceResult(call, made, copy, *kind, path);
}

bool PassPhoto(StageCall& call, const WorkReport& report, const std::wstring& path) {
    const bool hasNoDecoder =
        std::ranges::find(report.found, kNoDecoder, &WorkFound::key) != report.found.end();
    if (!hasNoDecoder || call.run.record.hasSaidNoDecoder) return true;
    call.run.record.hasSaidNoDecoder = true;
    Refuse(call, OB_TEXT_PHOTO_NO_DECODER, path);
    return !call.wait.IsEnded();
}

StepResult MakeOfPicture(StageCall& call, const WorkOrder& order, HANDLE source, NewFile& made,
                         IsResult& isResult, const RefusalTexts& texts, const std::wstring& path) {
    const auto goOn = [](bool passes) { return passes ? StepResult::Passed : StepResult::Stopped; };
    const WorkReport report = call.run.process.Run(order, source, made.Handle(), call.wait);
    if (report.result == WorkResult::Unchanged) return StepResult::Passed;
    if (report.result == WorkResult::NotSupported) return goOn(PassPhoto(call, report, path));
    const bool isMade = report.result == WorkResult::Changed;
    if (isMade && isResult(made) && report.size == made.Size()) return StepResult::Made;
    return goOn(
        RefuseResult(call, isMade ? WorkResult::ProcessFailed : report.result, texts, path));
}

StepResult MakePhoto(StageCall& call, HANDLE source, NewFile& made, const std::wstring& path) {
    const WorkOrder order(obcontract::WorkKind::ConvertPhoto,
                          PhotoSettings::Load(call.settings).Order());
    return MakeOfPicture(call, order, source, made, IsPhoto, kTexts, path);
}

bool ConvertPhoto(StageCall& call, std::wstring& path, const std::wstring& folder) {
    const auto kinds = PhotoSettings::Load(call.settings).Order().kinds;
    // The extensions of both results are equally long.
    if (ResultPath(path, L"jpg").size() > kLongestResult)
        return PassUnlessPhoto(call, path, folder, kinds);
    switch (NoteForFit(call, path, folder, kinds, &FitNote::isConverted)) {
    case Noted::Yes:
        return true;
    case Noted::Stopped:
        return false;
    default:
        return ConvertNow(call, path, folder);
    }
}

} // namespace providers
