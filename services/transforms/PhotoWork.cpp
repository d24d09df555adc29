#include "services/transforms/PhotoWork.h"

#include "ObLib/Src/Win32/ModulePath.h"
#include "services/transforms/PictureFiles.h"
#include "services/transforms/PictureWatch.h"
#include "services/transforms/PictureWork.h"
#include "services/transforms/photos/HeifLibrary.h"

namespace transforms {
namespace {

using namespace obcontract;

static_assert(static_cast<unsigned>(WorkPhotoKinds::Heic) ==
              static_cast<unsigned>(PhotoKind::Heic));
static_assert(static_cast<unsigned>(WorkPhotoKinds::Avif) ==
              static_cast<unsigned>(PhotoKind::Avif));
static_assert(static_cast<unsigned>(WorkPhotoKinds::Webp) ==
              static_cast<unsigned>(PhotoKind::Webp));
static_assert(static_cast<unsigned>(WorkPhotoKinds::Tiff) ==
              static_cast<unsigned>(PhotoKind::Tiff));
static_assert(static_cast<unsigned>(WorkPhotoKinds::Bmp) == static_cast<unsigned>(PhotoKind::Bmp));
static_assert(static_cast<unsigned>(WorkPhotoKinds::JpegXr) ==
              static_cast<unsigned>(PhotoKind::JpegXr));
static_assert(static_cast<unsigned>(WorkPhotoKinds::Raw) == static_cast<unsigned>(PhotoKind::Raw));
static_assert(static_cast<unsigned>(WorkPhotoKinds::All) == kAllPhotoKinds);

} // namespace

std::optional<PhotoRequest> PhotoRequestOf(const WorkPhoto& settings) {
    const auto kinds = static_cast<unsigned>(settings.kinds);
    if (settings.quality < 1 || settings.quality > 100 || (kinds & ~kAllPhotoKinds) != 0) return {};
    auto library = ObLib::PathBesideModule(nullptr, kHeifLibraryFileName);
    return PhotoRequest{static_cast<int>(settings.quality), kinds,
                        library ? std::move(*library) : std::wstring()};
}

bool IsPhotoOf(PictureSource& source, unsigned kinds) {
    try {
        return (static_cast<unsigned>(PhotoFormOf(source).kind) & kinds) != 0;
    } catch (const PictureFailure&) {
        return false; // it can't be read any more
    }
}

std::optional<WorkEnd> ConvertPhotoFile(const WorkRequest& request, WorkChannel& channel) {
    const auto asked = PhotoRequestOf(request.SettingsAs<WorkPhoto>());
    if (!asked) return {};
    FileSource source(request.source.Get());
    if (!source.IsOpen()) return WorkEnd(WorkFailure::Unreadable);
    FileTarget target(request.target.Get());
    PictureWatch watch(channel);
    PictureOutcome outcome = ConvertPhoto(source, target, *asked, watch.Control());
    if (outcome == PictureOutcome::Written && !target.Flush())
        outcome = PictureOutcome::WriteFailed;
    if (outcome == PictureOutcome::Unsupported && IsPhotoOf(source, asked->kinds) &&
        !channel.SendFinding("no-decoder", 1)) {
        return {};
    }
    return EndOfPicture(outcome, target.Size());
}

} // namespace transforms
