#include "services/providers/transforms/ConvertPdf.h"

#include "services/providers/files/FirstBytes.h"
#include "services/providers/files/ResultName.h"
#include "services/providers/settings/PdfSettings.h"
#include "services/providers/suite/DocumentToPdf.h"
#include "services/providers/transforms/ChangeCopy.h"
#include "services/providers/transforms/ConvertPhotos.h"
#include "services/providers/transforms/FitNotes.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

constexpr wchar_t kExtension[] = L"pdf";

constexpr RefusalTexts kTexts = {OB_TEXT_PDF_DAMAGED, OB_TEXT_PDF_TOO_LARGE, 0, OB_TEXT_PDF_FAILED};

// By what is in the file: the work process may have reported anything.
bool IsPdf(const NewFile& made) { return BeginsAsPdf(made.Handle()); }

bool Place(StageCall& call, NewFile& made, WorkingCopy& copy, std::wstring& path) {
    return PlaceResult(call, made, copy, {kExtension, HasExtension(path, kExtension)}, path);
}

bool ConvertPicture(StageCall& call, const PdfSettings& settings, WorkingCopy& copy,
                    std::wstring& path) {
    const auto made = NewFile::MakeBeside(copy, call.run.unfinished);
    if (!made) return Refuse(call, OB_TEXT_UNWRITABLE, path);
    const WorkOrder order(obcontract::WorkKind::PictureToPdf, settings.Order());
    const StepResult step = MakeOfPicture(call, order, copy.Handle(), *made, IsPdf, kTexts, path);
    return step == StepResult::Made ? Place(call, *made, copy, path) : step == StepResult::Passed;
}

// A sentence after which the file goes out as it is. False when the call was to end.
bool PassWith(StageCall& call, UINT text, const std::wstring& path) {
    Refuse(call, text, path);
    return !call.wait.IsEnded();
}

bool PassWithoutSuite(StageCall& call, const std::wstring& path) {
    if (call.run.record.hasSaidNoSuite) return true;
    call.run.record.hasSaidNoSuite = true;
    return PassWith(call, OB_TEXT_SUITE_NONE, path);
}

bool ConvertOffice(StageCall& call, WorkingCopy& copy, std::wstring& path) {
    const auto made = NewFile::MakeBeside(copy, call.run.unfinished);
    if (!made) return Refuse(call, OB_TEXT_UNWRITABLE, path);
    const SuiteDocument document{copy.Handle(), FileNameOf(path), copy.Folder()};
    switch (ConvertDocument(document, made->Handle(), call.run.process, call.wait)) {
    case SuiteOutcome::Converted:
        return Place(call, *made, copy, path);
    case SuiteOutcome::NotADocument:
        return true;
    case SuiteOutcome::NoSuite:
        return PassWithoutSuite(call, path);
    case SuiteOutcome::Protected:
        return PassWith(call, OB_TEXT_SUITE_PROTECTED, path);
    case SuiteOutcome::NoAnswer:
        return Refuse(call, OB_TEXT_SUITE_NO_ANSWER, path);
    case SuiteOutcome::Unwritable:
        return Refuse(call, OB_TEXT_UNWRITABLE, path);
    case SuiteOutcome::Busy:
        return Refuse(call, OB_TEXT_SUITE_BUSY, path);
    case SuiteOutcome::Cancelled:
        return false;
    default:
        return Refuse(call, OB_TEXT_SUITE_FAILED, path);
    }
}

// Before the work, as far as headers show it. What becomes a PDF all the same finds no name.
bool WillConvert(StageCall& call, const WorkingCopy& copy, bool isDocument) {
    using enum obcontract::WorkPhotoKinds;
    if (isDocument) return IsSuiteThere();
    return LookAtPicture(call, copy, All) != WorkResult::NotSupported ||
           LookAtPicture(call, copy, None) != WorkResult::NotSupported;
}

} // namespace

bool ConvertToPdf(StageCall& call, std::wstring& path, const std::wstring& folder) {
    auto copy = OpenCopy(call, path, folder);
    if (!copy) return false;
    const PdfSettings settings = PdfSettings::Load(call.settings);
    const bool isDocument = IsDocument(copy->Handle(), FileNameOf(path));
    if (isDocument ? !settings.documents : !settings.pictures) return true;
    if (ResultPath(path, kExtension).size() > kLongestResult &&
        WillConvert(call, *copy, isDocument))
        return Refuse(call, OB_TEXT_PATH_TOO_LONG, path);
    return isDocument ? ConvertOffice(call, *copy, path)
                      : ConvertPicture(call, settings, *copy, path);
}

void NoteMissingSuite(TransformRun& run, const TransformSettings& settings, HWND owner) {
    if (run.record.hasSaidNoSuite || !PdfSettings::Load(settings).documents || IsSuiteThere())
        return;
    run.record.hasSaidNoSuite = true;
    ShowSentence(owner, OwnText(OB_TEXT_SUITE_NOT_READY));
}

} // namespace providers
