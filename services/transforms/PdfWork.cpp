#include "services/transforms/PdfWork.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "ObLib/Src/Win32/ModulePath.h"
#include "services/transforms/PhotoWork.h"
#include "services/transforms/PictureFiles.h"
#include "services/transforms/PictureWatch.h"
#include "services/transforms/PictureWork.h"
#include "services/transforms/photos/HeifLibrary.h"
#include "services/transforms/photos/PhotoKind.h"
#include "services/transforms/topdf/PicturePdf.h"

namespace transforms {
namespace {

using namespace obcontract;

struct PageRow {
    WorkPage page;
    PdfPageSize meant;
};
constexpr PageRow kPages[] = {
    {WorkPage::AsPicture, PdfPageSize::AsPicture},
    {WorkPage::A4, PdfPageSize::A4},
    {WorkPage::Letter, PdfPageSize::Letter},
};

// Nothing for values that the contract lacks.
std::optional<PicturePdfRequest> Asked(const WorkPdf& settings) {
    const auto row = std::ranges::find(kPages, settings.page, &PageRow::page);
    if (row == std::end(kPages) || settings.reserved != 0) return {};
    auto library = ObLib::PathBesideModule(nullptr, kHeifLibraryFileName);
    return PicturePdfRequest{row->meant, library ? std::move(*library) : std::wstring()};
}

} // namespace

std::optional<WorkEnd> MakePdf(const WorkRequest& request, WorkChannel& channel) {
    const auto asked = Asked(request.SettingsAs<WorkPdf>());
    if (!asked) return {};
    FileSource source(request.source.Get());
    if (!source.IsOpen()) return WorkEnd(WorkFailure::Unreadable);
    FileTarget target(request.target.Get());
    PictureWatch watch(channel);
    PictureOutcome outcome = MakePicturePdf(source, target, *asked, watch.Control());
    if (outcome == PictureOutcome::Written && !target.Flush())
        outcome = PictureOutcome::WriteFailed;
    if (outcome == PictureOutcome::Unsupported && IsPhotoOf(source, kAllPhotoKinds) &&
        !channel.SendFinding("no-decoder", 1)) {
        return {};
    }
    return EndOfPicture(outcome, target.Size());
}

} // namespace transforms
