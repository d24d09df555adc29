#include "services/transforms/photos/TiffPhoto.h"

#include <cstring>

#include "services/transforms/codecs/TiffPicture.h"
#include "services/transforms/photos/CarriedExif.h"

namespace transforms {
namespace {

[[noreturn]] void Throw(PictureOutcome outcome) { throw PictureFailure{outcome}; }

std::uint16_t Short(TIFF* tiff, std::uint32_t tag) noexcept {
    std::uint16_t value = 0;
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

PhotoSamples SamplesOf(TIFF* tiff) noexcept {
    switch (Short(tiff, TIFFTAG_PHOTOMETRIC)) {
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

// The rows with the file that they come from.
class TiffPhotoRows final : public RowReader {
public:
    TiffPhotoRows(PictureSource& source, const PictureControl& control) : file_(source, control) {
        if (!TIFFLastDirectory(file_.get())) return;
        try {
            rows_ = OpenTiffRows(file_, control);
        } catch (const PictureFailure& failure) {
            if (failure.outcome != PictureOutcome::Unsupported) throw;
            rows_ = std::make_unique<ShownRows>(file_, SizeOf(), control);
            isShown_ = true;
        }
    }
    bool HasManyPages() const noexcept { return !rows_; }
    const RasterForm& Form() const noexcept override { return rows_->Form(); }
    void Read(std::uint8_t* row) override { rows_->Read(row); }

    PhotoSamples Samples() const noexcept {
        return isShown_ ? PhotoSamples::Rgb : SamplesOf(file_.get());
    }
    unsigned Orientation() const noexcept {
        const unsigned orientation = Short(file_.get(), TIFFTAG_ORIENTATION);
        return orientation >= 1 && orientation <= 8 ? orientation : 1;
    }
    PictureBytes Profile() const {
        std::uint32_t size = 0;
        void* bytes = nullptr;
        if (!TIFFGetField(file_.get(), TIFFTAG_ICCPROFILE, &size, &bytes)) return {};
        const auto* first = static_cast<const std::uint8_t*>(bytes);
        return {first, first + size};
    }

private:
    PictureSize SizeOf() const {
        PictureSize size;
        TIFFGetField(file_.get(), TIFFTAG_IMAGEWIDTH, &size.width);
        TIFFGetField(file_.get(), TIFFTAG_IMAGELENGTH, &size.height);
        return size;
    }

    TiffFile file_;
    std::unique_ptr<RowReader> rows_;
    bool isShown_ = false;
};

} // namespace

std::optional<DecodedPhoto> DecodeTiff(PictureSource& source, const PictureControl& control) {
    auto rows = std::make_unique<TiffPhotoRows>(source, control);
    if (rows->HasManyPages()) return {};
    DecodedPhoto photo;
    photo.samples = rows->Samples();
    photo.orientation = rows->Orientation();
    photo.profile = rows->Profile();
    PictureSize size = rows->Form().size;
    if (photo.orientation >= 5) std::swap(size.width, size.height);
    photo.exif = CarriedExif(TiffDirectories(source), size);
    photo.rows = std::move(rows);
    return photo;
}

} // namespace transforms
