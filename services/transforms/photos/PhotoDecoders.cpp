#include "services/transforms/photos/PhotoDecoders.h"

#include <utility>

#include "services/transforms/codecs/BmpPicture.h"
#include "services/transforms/codecs/WebpPicture.h"
#include "services/transforms/photos/CarriedExif.h"
#include "services/transforms/photos/HeicDecoder.h"
#include "services/transforms/photos/PlatformDecoder.h"
#include "services/transforms/photos/TiffPhoto.h"

namespace transforms {
namespace {

std::optional<DecodedPhoto> DecodeWebp(PictureSource& source, const PictureControl& control) {
    const WebpForm form = WebpFormOf(source, control);
    if (form.isAnimated) return {};
    const PictureBytes file = ReadWholePicture(source, control.limits.memory / 2);
    DecodedPhoto photo;
    photo.hasFineColours = form.isLossless;
    photo.profile = WebpChunk(file, "ICCP");
    const PictureBytes chunk = WebpChunk(file, "EXIF");
    const auto exif = WithoutExifMark(chunk);
    MemorySource memory(exif);
    photo.orientation = ExifOrientation(TiffDirectories(memory));
    PictureSize size = form.size;
    if (photo.orientation >= 5) std::swap(size.width, size.height);
    photo.exif = CarriedExif(exif, size);
    photo.rows = OpenWebpRows(file, control);
    return photo;
}

// The system reads the forms that are rare: packed pixels and 16 bits.
std::optional<DecodedPhoto> DecodeBmp(PictureSource& source, const PictureControl& control) {
    try {
        BmpPixels pixels = OpenBmpPixels(source, control);
        DecodedPhoto photo;
        photo.zeroAlphaIsUnset = true;
        photo.samples = pixels.rows->Form().channels == 1 ? PhotoSamples::Grey : PhotoSamples::Rgb;
        photo.rows = std::move(pixels.rows);
        photo.profile = std::move(pixels.profile);
        return photo;
    } catch (const PictureFailure& failure) {
        if (failure.outcome != PictureOutcome::Unsupported) throw;
    }
    return DecodeByPlatform(source, PhotoKind::Bmp, control);
}

// By the library, or by the system where the library is missing or can't decode the photo: anybody
// may have replaced it.
std::optional<DecodedPhoto> DecodeHeicAnyhow(PictureSource& source, const std::wstring& library,
                                             const PictureControl& control) {
    try {
        if (auto photo = DecodeHeic(source, library, control)) return photo;
    } catch (const PictureFailure& failure) {
        if (failure.outcome != PictureOutcome::Unsupported) throw;
    }
    return DecodeByPlatform(source, PhotoKind::Heic, control);
}

} // namespace

std::optional<DecodedPhoto> DecodePhoto(PhotoKind kind, PictureSource& source,
                                        const std::wstring& heifLibrary,
                                        const PictureControl& control) {
    switch (kind) {
    case PhotoKind::Webp:
        return DecodeWebp(source, control);
    case PhotoKind::Tiff:
        return DecodeTiff(source, control);
    case PhotoKind::Bmp:
        return DecodeBmp(source, control);
    case PhotoKind::Heic:
        return DecodeHeicAnyhow(source, heifLibrary, control);
    case PhotoKind::None:
        throw PictureFailure{PictureOutcome::Unsupported};
    default:
        return DecodeByPlatform(source, kind, control);
    }
}

} // namespace transforms
