#include "services/transforms/photos/TiffPhoto.h"

#include <cstring>

#include "services/transforms/codecs/TiffLibrary.h"
#include "services/transforms/codecs/TiffPicture.h"
#include "services/transforms/photos/CarriedExif.h"

namespace transforms {
namespace {

[[noreturn]] void Throw(PictureOutcome outcome) { throw PictureFailure{outcome}; }

PhotoSamples SamplesOf(TIFF* tiff) noexcept {
    switch (TiffShort(tiff, TIFFTAG_PHOTOMETRIC)) {
    case PHOTOMETRIC_MINISBLACK:
        return PhotoSamples::Grey;
    case PHOTOMETRIC_MINISWHITE:
        return PhotoSamples::WhiteIsZero;
    case PHOTOMETRIC_SEPARATED:
        return PhotoSamples::Cmyk;
    case PHOTOMETRIC_ICCLAB:
        return PhotoSamples::Lab;
    case PHOTOMETRIC_CIELAB:
        return PhotoSamples::SignedLab;
    default:
        return PhotoSamples::Rgb;
    }
}

struct ShownImage : TIFFRGBAImage {
    ShownImage() : TIFFRGBAImage{} {}
    ~ShownImage() {
        if (isBegun) TIFFRGBAImageEnd(this);
    }
    ShownImage(const ShownImage&) = delete;
    ShownImage& operator=(const ShownImage&) = delete;
    bool isBegun = false;
};

// The picture in memory, as RGBA that is multiplied by alpha.
class ShownRows final : public RowReader {
public:
    ShownRows(TiffFile& file, PictureSize size, const PictureControl& control) {
        form_.size = size;
        form_.channels = 4;
        form_.hasAlpha = form_.isPremultiplied = true;
        CheckMemory(file.get(), control);
        ShownImage image;
        char message[1024];
        if (!TIFFRGBAImageOK(file.get(), message)) Throw(PictureOutcome::Unsupported);
        image.isBegun = TIFFRGBAImageBegin(&image, file.get(), 1, message) != 0;
        if (!image.isBegun) file.ThrowFailure();
        image.req_orientation = image.orientation; // as the rows are stored
        pixels_.resize(std::size_t{size.width} * size.height);
        file.Check(TIFFRGBAImageGet(&image, pixels_.data(), size.width, size.height) != 0);
    }

    const RasterForm& Form() const noexcept override { return form_; }

    // Red is in the lowest byte.
    void Read(std::uint8_t* row) override {
        std::memcpy(row, &pixels_[next_++ * form_.size.width], form_.RowBytes());
    }

private:
    // The library takes a strip or tile besides, and cannot be stopped: so half of what rows may
    // have.
    void CheckMemory(TIFF* tiff, const PictureControl& control) const {
        control.ThrowIfTooMuch(std::uint64_t{8} * form_.size.width * form_.size.height);
        const auto part = TIFFIsTiled(tiff) ? TIFFTileSize64(tiff) : TIFFStripSize64(tiff);
        control.ThrowIfTooMuch(2 * static_cast<std::uint64_t>(part));
        const std::uint32_t count =
            TIFFIsTiled(tiff) ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
        for (std::uint32_t i = 0; i < count; ++i)
            control.ThrowIfTooMuch(TIFFGetStrileByteCount(tiff, i));
    }

    RasterForm form_;
    std::vector<std::uint32_t> pixels_;
    std::size_t next_ = 0;
};

unsigned OrientationOf(TIFF* tiff) noexcept {
    const unsigned orientation = TiffShort(tiff, TIFFTAG_ORIENTATION);
    return orientation >= 1 && orientation <= 8 ? orientation : 1;
}

PictureBytes ProfileOf(TIFF* tiff) {
    std::uint32_t size = 0;
    void* bytes = nullptr;
    if (!TIFFGetField(tiff, TIFFTAG_ICCPROFILE, &size, &bytes)) return {};
    const auto* first = static_cast<const std::uint8_t*>(bytes);
    return {first, first + size};
}

PictureSize SizeOf(TIFF* tiff) noexcept {
    PictureSize size;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &size.width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &size.height);
    return size;
}

// Null for a page that only the library itself can show.
std::unique_ptr<RowReader> OpenRows(TiffFile& file, const PictureControl& control) {
    try {
        return OpenTiffRows(file, control);
    } catch (const PictureFailure& failure) {
        if (failure.outcome != PictureOutcome::Unsupported) throw;
        return {};
    }
}

// The rows with the file that they come from.
class OwnedTiffRows final : public RowReader {
public:
    OwnedTiffRows(std::unique_ptr<TiffFile> file, std::unique_ptr<RowReader> rows) noexcept
        : file_(std::move(file)), rows_(std::move(rows)) {}
    const RasterForm& Form() const noexcept override { return rows_->Form(); }
    void Read(std::uint8_t* row) override { rows_->Read(row); }

private:
    std::unique_ptr<TiffFile> file_;
    std::unique_ptr<RowReader> rows_;
};

} // namespace

DecodedPhoto DecodeTiffPage(TiffFile& file, const PictureControl& control) {
    DecodedPhoto photo;
    photo.orientation = OrientationOf(file.get());
    photo.profile = ProfileOf(file.get());
    photo.rows = OpenRows(file, control);
    if (photo.rows)
        photo.samples = SamplesOf(file.get());
    else
        photo.rows = std::make_unique<ShownRows>(file, SizeOf(file.get()), control);
    return photo;
}

bool IsTiffPageServed(TiffFile& file, const PictureControl& control) {
    char message[1024];
    return OpenRows(file, control) || TIFFRGBAImageOK(file.get(), message);
}

std::optional<DecodedPhoto> DecodeTiff(PictureSource& source, const PictureControl& control) {
    auto file = std::make_unique<TiffFile>(source, control);
    if (!TIFFLastDirectory(file->get())) return {};
    DecodedPhoto photo = DecodeTiffPage(*file, control);
    PictureSize size = photo.rows->Form().size;
    if (photo.orientation >= 5) std::swap(size.width, size.height);
    photo.exif = CarriedExif(TiffDirectories(source), size);
    photo.rows = std::make_unique<OwnedTiffRows>(std::move(file), std::move(photo.rows));
    return photo;
}

} // namespace transforms
