#include "services/transforms/photos/ConvertPhoto.h"

#include <optional>
#include <utility>

#include "services/transforms/codecs/TiffLibrary.h"
#include "services/transforms/codecs/WebpPicture.h"
#include "services/transforms/photos/HeicDecoder.h"
#include "services/transforms/photos/KeptRows.h"
#include "services/transforms/photos/PhotoColours.h"
#include "services/transforms/photos/PhotoDecoders.h"
#include "services/transforms/photos/PhotoWriters.h"
#include "services/transforms/pictures/Picture.h"

namespace transforms {
namespace {

[[noreturn]] void Throw(PictureOutcome outcome) { throw PictureFailure{outcome}; }

// Nothing for what passes.
std::optional<DecodedPhoto> Decode(PictureSource& source, const PhotoRequest& request,
                                   const PictureControl& control) {
    const PhotoForm form = PhotoFormOf(source);
    if ((static_cast<unsigned>(form.kind) & request.kinds) == 0) Throw(PictureOutcome::Unsupported);
    if (form.isSequence) return {};
    return DecodePhoto(form.kind, source, request.heifLibrary, control);
}

// `step` may be null, see PhotoWriting.
void Write(DecodedPhoto photo, PictureTarget& target, const PhotoRequest& request,
           const ShrinkStep* step, const PictureControl& control) {
    PhotoWriting writing{request.quality, photo.hasFineColours, {}, std::move(photo.exif), step};
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
    auto photo = Decode(source, request, control);
    if (!photo) return PictureOutcome::Unchanged;
    Write(std::move(*photo), target, request, nullptr, control);
    return PictureOutcome::Written;
}

bool HasManyPages(PictureSource& source, const PictureControl& control) {
    TiffFile file(source, control);
    return !TIFFLastDirectory(file.get());
}

bool HasManyPictures(const PhotoForm& form, PictureSource& source, const PictureControl& control) {
    if (form.kind == PhotoKind::Webp) return WebpFormOf(source, control).isAnimated;
    if (form.kind == PhotoKind::Tiff) return HasManyPages(source, control);
    return form.isSequence;
}

} // namespace

PictureOutcome ConvertPhoto(PictureSource& source, PictureTarget& target,
                            const PhotoRequest& request, const PictureControl& control) noexcept {
    return RunPictureWork([&] { return Convert(source, target, request, control); });
}

PictureOutcome CanConvertPhoto(PictureSource& source, unsigned kinds,
                               const PictureControl& control) {
    const PhotoForm form = PhotoFormOf(source);
    if ((static_cast<unsigned>(form.kind) & kinds) == 0) return PictureOutcome::Unsupported;
    return HasManyPictures(form, source, control) ? PictureOutcome::Unchanged
                                                  : PictureOutcome::Written;
}

// HEIC and WebP are decoded as a whole when their rows are opened.
PictureSize SizeOfPhoto(PictureSource& source, const PhotoRequest& request,
                        const PictureControl& control) {
    const PhotoKind kind = PhotoFormOf(source).kind;
    if (kind == PhotoKind::Webp) return WebpFormOf(source, control).size;
    if (kind == PhotoKind::Heic) {
        if (const auto size = HeicSize(source, request.heifLibrary, control)) return *size;
    }
    const auto photo = Decode(source, request, control);
    if (!photo) Throw(PictureOutcome::Unsupported);
    return photo->rows->Form().size;
}

void ShrinkPhoto(PictureSource& source, PictureTarget& target, const PhotoRequest& request,
                 const ShrinkStep& step, const PictureControl& control) {
    auto photo = Decode(source, request, control);
    if (!photo) Throw(PictureOutcome::Unsupported);
    Write(std::move(*photo), target, request, &step, control);
}

} // namespace transforms
