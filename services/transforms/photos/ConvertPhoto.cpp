#include "services/transforms/photos/ConvertPhoto.h"

#include <optional>
#include <utility>

#include "services/transforms/photos/KeptRows.h"
#include "services/transforms/photos/PhotoColours.h"
#include "services/transforms/photos/PhotoDecoders.h"
#include "services/transforms/photos/PhotoWriters.h"
#include "services/transforms/pictures/Picture.h"

namespace transforms {
namespace {

void Write(DecodedPhoto photo, PictureTarget& target, const PhotoRequest& request,
           const PictureControl& control) {
    PhotoWriting writing{request.quality, photo.hasFineColours, {}, std::move(photo.exif)};
    PlainPhoto plain = PlainPhotoOf(photo);
    writing.profile = std::move(plain.profile);
    if (photo.orientation == 1 && !plain.rows->Form().hasAlpha)
        return WriteJpegPhoto(*plain.rows, target, writing, control);
    KeptRows kept(*plain.rows, photo.orientation, photo.zeroAlphaIsUnset, control);
    plain.rows.reset(); // its memory
    kept.Form().hasAlpha ? WritePngPhoto(kept, target, writing, control)
                         : WriteJpegPhoto(kept, target, writing, control);
}

PictureOutcome Convert(PictureSource& source, PictureTarget& target, const PhotoRequest& request,
                       const PictureControl& control) {
    const PhotoForm form = PhotoFormOf(source);
    if ((static_cast<unsigned>(form.kind) & request.kinds) == 0) return PictureOutcome::Unsupported;
    if (form.isSequence) return PictureOutcome::Unchanged;
    auto photo = DecodePhoto(form.kind, source, request.heifLibrary, control);
    if (!photo) return PictureOutcome::Unchanged;
    Write(std::move(*photo), target, request, control);
    return PictureOutcome::Shrunk;
}

} // namespace

PictureOutcome ConvertPhoto(PictureSource& source, PictureTarget& target,
                            const PhotoRequest& request, const PictureControl& control) noexcept {
    return RunPictureWork([&] { return Convert(source, target, request, control); });
}

} // namespace transforms
