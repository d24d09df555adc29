#include "services/transforms/topdf/TiffPages.h"

#include <algorithm>
#include <cstring>

#include "services/transforms/codecs/TiffLibrary.h"
#include "services/transforms/photos/TiffPhoto.h"

namespace transforms {
namespace {

// Many pages may share their data: a small file doesn't make a PDF without end.
constexpr std::uint64_t kMostBytes = 8ull << 30;

Resolution ResolutionOf(TIFF* tiff) noexcept {
    float across = 0, down = 0;
    const std::uint16_t unit = TiffShort(tiff, TIFFTAG_RESOLUTIONUNIT);
    if (unit == RESUNIT_NONE || !TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &across) ||
        !TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &down))
        return {};
    const double scale = unit == RESUNIT_CENTIMETER ? 2.54 : 1;
    return {across * scale, down * scale};
}

// Black and white, few shades, and palettes: their rows stay as they are stored.
bool IsPacked(TIFF* tiff) noexcept {
    const unsigned bits = TiffShort(tiff, TIFFTAG_BITSPERSAMPLE);
    const unsigned kind = TiffShort(tiff, TIFFTAG_PHOTOMETRIC);
    const bool isGrey = kind == PHOTOMETRIC_MINISBLACK || kind == PHOTOMETRIC_MINISWHITE;
    const bool isServed = kind == PHOTOMETRIC_PALETTE ? bits <= 8 : isGrey && bits < 8;
    return isServed && (bits & (bits - 1)) == 0 && TiffShort(tiff, TIFFTAG_SAMPLESPERPIXEL) == 1 &&
           TiffShort(tiff, TIFFTAG_SAMPLEFORMAT) == SAMPLEFORMAT_UINT && !TIFFIsTiled(tiff) &&
           TIFFIsCODECConfigured(TiffShort(tiff, TIFFTAG_COMPRESSION));
}

PictureBytes PaletteOf(TIFF* tiff, unsigned bits) {
    std::uint16_t* colours[3] = {};
    if (!TIFFGetField(tiff, TIFFTAG_COLORMAP, &colours[0], &colours[1], &colours[2]))
        throw PictureFailure{PictureOutcome::Damaged};
    const std::size_t count = std::size_t{1} << bits;
    const bool isDeep = std::ranges::any_of(colours, [&](const std::uint16_t* values) {
        return std::any_of(values, values + count, [](std::uint16_t value) { return value > 255; });
    });
    PictureBytes palette;
    for (std::size_t i = 0; i < count; ++i)
        for (const std::uint16_t* values : colours)
            palette.push_back(static_cast<std::uint8_t>(isDeep ? values[i] >> 8 : values[i]));
    return palette;
}

class PackedRows final : public RowReader {
public:
    PackedRows(TiffFile& file, PictureSize size, unsigned bits, const PictureControl& control)
        : file_(file) {
        const std::uint64_t bytes = (std::uint64_t{size.width} * bits + 7) / 8;
        const auto stored = static_cast<std::uint64_t>(TIFFScanlineSize64(file.get()));
        if (stored < bytes) throw PictureFailure{PictureOutcome::Damaged};
        control.ThrowIfTooMuch(stored);
        // The library reads a strip as it is stored at once.
        for (std::uint32_t i = 0; i < TIFFNumberOfStrips(file.get()); ++i)
            control.ThrowIfTooMuch(TIFFGetStrileByteCount(file.get(), i));
        form_.size = {static_cast<std::uint32_t>(bytes), size.height};
        form_.channels = 1;
        row_.resize(static_cast<std::size_t>(stored));
    }
    const RasterForm& Form() const noexcept override { return form_; }
    void Read(std::uint8_t* row) override {
        file_.Check(TIFFReadScanline(file_.get(), row_.data(), next_++, 0) == 1);
        std::memcpy(row, row_.data(), form_.RowBytes());
    }

private:
    TiffFile& file_;
    RasterForm form_;
    PictureBytes row_;
    std::uint32_t next_ = 0;
};

} // namespace

TiffPages::TiffPages(PictureSource& source, const PictureControl& control)
    : control_(control), file_(source, control) {
    do {
        control.ThrowIfCancelled();
        hasPages_ = hasPages_ || IsPage();
        if (!IsPacked(file_.get()) && !IsTiffPageServed(file_, control))
            throw PictureFailure{PictureOutcome::Unsupported};
    } while (GoOn());
    file_.Check(TIFFSetDirectory(file_.get(), 0) != 0);
}

bool TiffPages::IsPage() const noexcept {
    constexpr std::uint32_t kOfAnother = FILETYPE_REDUCEDIMAGE | FILETYPE_MASK;
    return (TiffLong(file_.get(), TIFFTAG_SUBFILETYPE) & kOfAnother) == 0;
}

bool TiffPages::GoOn() {
    if (TIFFLastDirectory(file_.get())) return false;
    file_.Check(TIFFReadDirectory(file_.get()) != 0);
    return true;
}

std::optional<PagePicture> TiffPages::Next() {
    do {
        if (isBegun_ && !GoOn()) return {};
        isBegun_ = true;
    } while (hasPages_ && !IsPage());
    PagePicture picture = Read();
    const RasterForm& form = picture.rows->Form();
    read_ += static_cast<std::uint64_t>(form.RowBytes()) * form.size.height;
    if (read_ > kMostBytes) throw PictureFailure{PictureOutcome::TooLarge};
    return picture;
}

PagePicture TiffPages::Read() {
    TIFF* const tiff = file_.get();
    PagePicture picture;
    picture.size = {TiffLong(tiff, TIFFTAG_IMAGEWIDTH), TiffLong(tiff, TIFFTAG_IMAGELENGTH)};
    if (!picture.size.width || !picture.size.height) throw PictureFailure{PictureOutcome::Damaged};
    control_.ThrowIfTooLarge(picture.size.width, picture.size.height);
    picture.resolution = ResolutionOf(tiff);
    IsPacked(tiff) ? ReadPacked(picture) : ReadDecoded(picture);
    return picture;
}

void TiffPages::ReadPacked(PagePicture& picture) {
    TIFF* const tiff = file_.get();
    const unsigned orientation = TiffShort(tiff, TIFFTAG_ORIENTATION);
    if (orientation >= 1 && orientation <= 8) picture.orientation = orientation;
    picture.bits = TiffShort(tiff, TIFFTAG_BITSPERSAMPLE);
    const unsigned kind = TiffShort(tiff, TIFFTAG_PHOTOMETRIC);
    picture.isInverted = kind == PHOTOMETRIC_MINISWHITE;
    picture.samples = kind == PHOTOMETRIC_PALETTE ? PhotoSamples::Rgb : PhotoSamples::Grey;
    if (kind == PHOTOMETRIC_PALETTE) picture.palette = PaletteOf(tiff, picture.bits);
    picture.rows = std::make_unique<PackedRows>(file_, picture.size, picture.bits, control_);
}

void TiffPages::ReadDecoded(PagePicture& picture) {
    DecodedPhoto photo = DecodeTiffPage(file_, control_);
    picture.bits = photo.rows->Form().bits;
    picture.samples = photo.samples;
    picture.rows = std::move(photo.rows);
    picture.orientation = photo.orientation;
    picture.profile = std::move(photo.profile);
}

} // namespace transforms
