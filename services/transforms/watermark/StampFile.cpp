#include "services/transforms/watermark/StampFile.h"

#include <memory>
#include <optional>
#include <utility>

#include "services/transforms/codecs/JpegRows.h"
#include "services/transforms/codecs/PngChunks.h"
#include "services/transforms/codecs/PngPicture.h"
#include "services/transforms/codecs/PngProfile.h"
#include "services/transforms/photos/ColourProfile.h"
#include "services/transforms/photos/KeptRows.h"
#include "services/transforms/photos/PhotoDecoders.h"
#include "services/transforms/pictures/Picture.h"

namespace transforms {
namespace {

constexpr std::uint64_t kMostPixels = 50'000'000;
constexpr std::size_t kLargestProfile = std::size_t{4} << 20;

DecodedPhoto DecodeJpeg(PictureSource& source, const PictureControl& control) {
    JpegPixels jpeg = OpenJpegRows(source, control);
    DecodedPhoto photo;
    photo.rows = std::move(jpeg.rows);
    const unsigned channels = photo.rows->Form().channels;
    photo.samples = channels == 1   ? PhotoSamples::Grey
                    : channels == 4 ? PhotoSamples::Cmyk
                                    : PhotoSamples::Rgb;
    photo.orientation = jpeg.orientation;
    photo.profile = std::move(jpeg.profile);
    return photo;
}

DecodedPhoto DecodePng(PictureSource& source, const PictureControl& control) {
    const PngChunks chunks = ScanPng(source, control);
    DecodedPhoto photo;
    photo.rows = OpenPngRows(source, control);
    const bool isGrey = photo.rows->Form().ColourChannels() == 1;
    photo.samples = isGrey ? PhotoSamples::Grey : PhotoSamples::Rgb;
    photo.orientation = chunks.Orientation();
    photo.profile = ProfileOfPng(chunks, kLargestProfile);
    return photo;
}

DecodedPhoto DecodeOther(PhotoKind kind, PictureSource& source, const PictureControl& control) {
    auto photo = DecodePhoto(kind, source, {}, control);
    if (!photo) throw PictureFailure{PictureOutcome::Unsupported};
    return std::move(*photo);
}

// What begins as a TIFF file may be a raw photo of a camera, which is none of the kinds that a
// watermark may be.
DecodedPhoto DecodeTiffOrBmp(PictureSource& source, const PictureControl& control) {
    const PhotoKind kind = PhotoFormOf(source).kind;
    const bool isServed = kind == PhotoKind::Tiff || kind == PhotoKind::Bmp;
    return DecodeOther(isServed ? kind : PhotoKind::None, source, control);
}

DecodedPhoto Decode(PictureSource& source, const PictureControl& control) {
    const PictureForm form = FormOfPicture(source, control);
    if (form.hasManyPictures) throw PictureFailure{PictureOutcome::Unsupported};
    switch (form.kind) {
    case PictureKind::Jpeg:
        return DecodeJpeg(source, control);
    case PictureKind::Png:
        return DecodePng(source, control);
    case PictureKind::Webp:
        return DecodeOther(PhotoKind::Webp, source, control);
    case PictureKind::Tiff:
    case PictureKind::Bmp:
        return DecodeTiffOrBmp(source, control);
    default:
        throw PictureFailure{PictureOutcome::Unsupported};
    }
}

// Rows in sRGB of rows of 8 bits with a profile.
class SrgbRows final : public RowReader {
public:
    SrgbRows(std::unique_ptr<RowReader> from, ToSrgb toSrgb)
        : from_(std::move(from)), toSrgb_(std::move(toSrgb)), form_(from_->Form()),
          stored_(form_.RowBytes()), rgb_(std::size_t{3} * form_.size.width) {
        form_.channels = form_.hasAlpha ? 4 : 3;
    }
    const RasterForm& Form() const noexcept override { return form_; }

    void Read(std::uint8_t* row) override {
        from_->Read(stored_.data());
        toSrgb_.Convert(stored_.data(), rgb_.data(), form_.size.width);
        const unsigned channels = from_->Form().channels;
        for (std::size_t x = 0; x < form_.size.width; ++x, row += form_.channels) {
            for (std::size_t c = 0; c < 3; ++c) row[c] = rgb_[3 * x + c];
            if (form_.hasAlpha) row[3] = stored_[(x + 1) * channels - 1];
        }
    }

private:
    std::unique_ptr<RowReader> from_;
    ToSrgb toSrgb_;
    RasterForm form_;
    PictureBytes stored_, rgb_;
};

// A profile that the library can't use counts as none, as in viewers.
std::unique_ptr<RowReader> InSrgb(PlainPhoto plain) {
    if (!IsSoundProfile(plain.profile)) return std::move(plain.rows);
    const RasterForm& form = plain.rows->Form();
    auto toSrgb = ToSrgb::FromPlain(plain.profile, form.ColourChannels(), form.hasAlpha ? 1 : 0);
    return std::make_unique<SrgbRows>(std::move(plain.rows), std::move(toSrgb));
}

StampPixels Kept(KeptRows rows, const PictureControl& control) {
    const RasterForm form = rows.Form();
    StampPixels kept{form.size, {}};
    kept.pixels.reserve(std::size_t{4} * form.size.width * form.size.height);
    PictureBytes row(form.RowBytes());
    const bool isGrey = form.ColourChannels() == 1;
    for (std::uint32_t y = 0; y < form.size.height; ++y) {
        control.ThrowIfCancelled();
        rows.Read(row.data());
        for (std::size_t at = 0; at < row.size(); at += form.channels) {
            const std::uint8_t alpha = form.hasAlpha ? row[at + form.channels - 1] : 255;
            const std::size_t green = isGrey ? at : at + 1, blue = isGrey ? at : at + 2;
            kept.pixels.insert(kept.pixels.end(), {row[at], row[green], row[blue], alpha});
        }
    }
    return kept;
}

} // namespace

StampPixels ReadStampFile(PictureSource& source, const PictureControl& control) {
    PictureControl limited = control;
    limited.limits.pixels = kMostPixels;
    DecodedPhoto photo = Decode(source, limited);
    const unsigned orientation = photo.orientation;
    const bool zeroAlphaIsUnset = photo.zeroAlphaIsUnset;
    const auto rows = InSrgb(PlainPhotoOf(photo));
    return Kept(KeptRows(*rows, orientation, zeroAlphaIsUnset, limited), limited);
}

} // namespace transforms
