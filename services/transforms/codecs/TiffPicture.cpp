// Rows out of strips or tiles, and the tags that go along.
#include "services/transforms/codecs/TiffPicture.h"

#include <algorithm>
#include <cstring>

#include "services/transforms/codecs/TiffLibrary.h"
#include "services/transforms/raster/StampedRows.h"

namespace transforms {
namespace {

[[noreturn]] void Throw(PictureOutcome outcome) { throw PictureFailure{outcome}; }

PictureSize SizeOf(TIFF* tiff, const PictureControl& control) {
    const PictureSize size{TiffLong(tiff, TIFFTAG_IMAGEWIDTH), TiffLong(tiff, TIFFTAG_IMAGELENGTH)};
    if (!size.width || !size.height) Throw(PictureOutcome::Damaged);
    control.ThrowIfTooLarge(size.width, size.height);
    return size;
}

bool IsJpeg(TIFF* tiff) noexcept {
    return TiffShort(tiff, TIFFTAG_COMPRESSION) == COMPRESSION_JPEG;
}

enum class LabPictures { Refused, Served }; // their samples have signs, which no filter knows

unsigned ColoursOf(TIFF* tiff, LabPictures lab) {
    switch (TiffShort(tiff, TIFFTAG_PHOTOMETRIC)) {
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_MINISWHITE:
        return 1;
    case PHOTOMETRIC_RGB:
        return 3;
    case PHOTOMETRIC_SEPARATED:
        if (TiffShort(tiff, TIFFTAG_INKSET) == INKSET_CMYK) return 4;
        Throw(PictureOutcome::Unsupported);
    case PHOTOMETRIC_YCBCR:
        if (IsJpeg(tiff)) return 3; // the codec delivers RGB
        Throw(PictureOutcome::Unsupported);
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
        if (lab == LabPictures::Served) return 3;
        [[fallthrough]];
    default:
        Throw(PictureOutcome::Unsupported);
    }
}

RasterForm FormOf(TIFF* tiff, PictureSize size, LabPictures lab = LabPictures::Refused) {
    RasterForm form{size, TiffShort(tiff, TIFFTAG_SAMPLESPERPIXEL),
                    TiffShort(tiff, TIFFTAG_BITSPERSAMPLE)};
    const bool isServed = (form.bits == 8 || form.bits == 16) &&
                          TiffShort(tiff, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_CONTIG &&
                          TiffShort(tiff, TIFFTAG_SAMPLEFORMAT) == SAMPLEFORMAT_UINT &&
                          TIFFIsCODECConfigured(TiffShort(tiff, TIFFTAG_COMPRESSION));
    const unsigned colours = ColoursOf(tiff, lab);
    if (!isServed || form.channels < colours || form.channels > colours + 1)
        Throw(PictureOutcome::Unsupported);
    std::uint16_t count = 0;
    std::uint16_t* kinds = nullptr;
    if (form.channels > colours && TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds) &&
        count == 1) {
        form.hasAlpha = kinds[0] != EXTRASAMPLE_UNSPECIFIED;
        form.isPremultiplied = kinds[0] == EXTRASAMPLE_ASSOCALPHA;
    }
    form.hasOtherChannel = form.channels > colours && !form.hasAlpha;
    const std::uint16_t photometric = TiffShort(tiff, TIFFTAG_PHOTOMETRIC);
    form.isInk = photometric == PHOTOMETRIC_MINISWHITE || photometric == PHOTOMETRIC_SEPARATED;
    return form;
}

class TiffRows final : public RowReader {
public:
    TiffRows(TiffFile& file, const PictureControl& control, LabPictures lab = LabPictures::Refused)
        : file_(file), tiff_(file.get()) {
        const PictureSize size = SizeOf(tiff_, control);
        if (IsJpeg(tiff_)) TIFFSetField(tiff_, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        form_ = FormOf(tiff_, size, lab);
        TIFFIsTiled(tiff_) ? PrepareTiles(control) : PrepareStrips(control);
    }
    const RasterForm& Form() const noexcept override { return form_; }

    void Read(std::uint8_t* row) override {
        const std::uint32_t y = next_++;
        if (!tileHeight_) return ReadScanline(row, y);
        if (y % tileHeight_ == 0) ReadTiles(y);
        std::memcpy(row, &band_[y % tileHeight_ * bandStride_], form_.RowBytes());
    }

private:
    void PrepareStrips(const PictureControl& control) {
        const auto row = static_cast<std::uint64_t>(TIFFScanlineSize64(tiff_));
        if (row < form_.RowBytes()) Throw(PictureOutcome::Damaged);
        control.ThrowIfTooMuch(row);
        // The library reads a strip as it is stored at once.
        for (std::uint32_t i = 0; i < TIFFNumberOfStrips(tiff_); ++i)
            control.ThrowIfTooMuch(TIFFGetStrileByteCount(tiff_, i));
        band_.resize(static_cast<std::size_t>(row));
    }

    void PrepareTiles(const PictureControl& control) {
        tileWidth_ = TiffLong(tiff_, TIFFTAG_TILEWIDTH);
        tileHeight_ = TiffLong(tiff_, TIFFTAG_TILELENGTH);
        const auto tileRow = static_cast<std::uint64_t>(TIFFTileRowSize64(tiff_));
        if (!tileWidth_ || !tileHeight_ ||
            tileRow != std::uint64_t{tileWidth_} * form_.channels * form_.bits / 8)
            Throw(PictureOutcome::Damaged);
        const std::uint64_t across =
            (form_.size.width + std::uint64_t{tileWidth_} - 1) / tileWidth_;
        control.ThrowIfTooMuch(tileRow);
        control.ThrowIfTooMuch(across * tileRow);
        control.ThrowIfTooMuch(across * tileRow * tileHeight_);
        bandStride_ = static_cast<std::size_t>(across * tileRow);
        band_.resize(bandStride_ * tileHeight_);
        tile_.resize(static_cast<std::size_t>(tileRow) * tileHeight_);
    }

    void ReadScanline(std::uint8_t* row, std::uint32_t y) {
        file_.Check(TIFFReadScanline(tiff_, band_.data(), y, 0) == 1);
        std::memcpy(row, band_.data(), form_.RowBytes());
    }

    void ReadTiles(std::uint32_t y) {
        const std::size_t tileRow = tile_.size() / tileHeight_;
        for (std::uint32_t x = 0; x < form_.size.width;
             x += std::min(tileWidth_, form_.size.width - x)) {
            file_.Check(TIFFReadTile(tiff_, tile_.data(), x, y, 0, 0) >= 0);
            for (std::size_t i = 0; i < tileHeight_; ++i)
                std::memcpy(&band_[i * bandStride_ + x / tileWidth_ * tileRow], &tile_[i * tileRow],
                            tileRow);
        }
    }

    TiffFile& file_;
    TIFF* tiff_;
    RasterForm form_;
    std::uint32_t next_ = 0, tileWidth_ = 0, tileHeight_ = 0;
    std::size_t bandStride_ = 0;
    PictureBytes band_, tile_;
};

// Tags that mean the same in the shrunk picture, by how the library passes their values.
const std::uint32_t ShortTags[] = {TIFFTAG_ORIENTATION, TIFFTAG_RESOLUTIONUNIT, TIFFTAG_INKSET};
const std::uint32_t RealTags[] = {TIFFTAG_XRESOLUTION, TIFFTAG_YRESOLUTION};
const std::uint32_t TextTags[] = {
    TIFFTAG_DOCUMENTNAME, TIFFTAG_IMAGEDESCRIPTION, TIFFTAG_MAKE,     TIFFTAG_MODEL,
    TIFFTAG_PAGENAME,     TIFFTAG_SOFTWARE,         TIFFTAG_DATETIME, TIFFTAG_ARTIST,
    TIFFTAG_HOSTCOMPUTER, TIFFTAG_COPYRIGHT};
const std::uint32_t ByteTags[] = {TIFFTAG_ICCPROFILE, TIFFTAG_XMLPACKET, TIFFTAG_PHOTOSHOP,
                                  TIFFTAG_RICHTIFFIPTC};

void CopyTags(TIFF* from, TIFF* to) {
    std::uint16_t number = 0;
    float real = 0;
    char* text = nullptr;
    std::uint32_t count = 0;
    void* bytes = nullptr;
    for (std::uint32_t tag : ShortTags)
        if (TIFFGetField(from, tag, &number)) TIFFSetField(to, tag, number);
    for (std::uint32_t tag : RealTags)
        if (TIFFGetField(from, tag, &real)) TIFFSetField(to, tag, real);
    for (std::uint32_t tag : TextTags)
        if (TIFFGetField(from, tag, &text)) TIFFSetField(to, tag, text);
    for (std::uint32_t tag : ByteTags)
        if (TIFFGetField(from, tag, &count, &bytes)) TIFFSetField(to, tag, count, bytes);
    std::uint16_t extras = 0;
    std::uint16_t* kinds = nullptr;
    if (TIFFGetField(from, TIFFTAG_EXTRASAMPLES, &extras, &kinds) && extras)
        TIFFSetField(to, TIFFTAG_EXTRASAMPLES, extras, kinds);
}

// Those that pictures of these depths can be written in; fax and others give way to one without
// loss.
std::uint16_t CompressionFor(TIFF* from) noexcept {
    const std::uint16_t old = TiffShort(from, TIFFTAG_COMPRESSION);
    const std::uint16_t kept[] = {COMPRESSION_NONE,          COMPRESSION_LZW,
                                  COMPRESSION_PACKBITS,      COMPRESSION_DEFLATE,
                                  COMPRESSION_ADOBE_DEFLATE, COMPRESSION_JPEG};
    return std::find(std::begin(kept), std::end(kept), old) != std::end(kept)
               ? old
               : COMPRESSION_ADOBE_DEFLATE;
}

void SetCompression(TIFF* from, TIFF* to, const ShrinkStep& step) {
    const std::uint16_t compression = CompressionFor(from);
    TIFFSetField(to, TIFFTAG_COMPRESSION, compression);
    if (compression == COMPRESSION_JPEG) {
        TIFFSetField(to, TIFFTAG_JPEGQUALITY, static_cast<int>(QualityOf(step)));
        TIFFSetField(to, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    } else if (compression != COMPRESSION_NONE && compression != COMPRESSION_PACKBITS) {
        TIFFSetField(to, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    }
}

class TiffWriter final : public RowWriter {
public:
    TiffWriter(TiffFile& file, TIFF* from, const RasterForm& form, PictureSize size,
               const ShrinkStep& step)
        : file_(file), row_(static_cast<std::size_t>(size.width) * form.channels * form.bits / 8) {
        TIFF* to = file.get();
        TIFFSetField(to, TIFFTAG_IMAGEWIDTH, size.width);
        TIFFSetField(to, TIFFTAG_IMAGELENGTH, size.height);
        TIFFSetField(to, TIFFTAG_BITSPERSAMPLE, form.bits);
        TIFFSetField(to, TIFFTAG_SAMPLESPERPIXEL, form.channels);
        TIFFSetField(to, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(to, TIFFTAG_PHOTOMETRIC, TiffShort(from, TIFFTAG_PHOTOMETRIC));
        SetCompression(from, to, step);
        CopyTags(from, to);
        TIFFSetField(to, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(to, 0));
    }
    void Write(const std::uint8_t* row) override {
        // The predictor works in the row that it is given.
        std::memcpy(row_.data(), row, row_.size());
        file_.Check(TIFFWriteScanline(file_.get(), row_.data(), next_++, 0) == 1);
    }

private:
    TiffFile& file_;
    PictureBytes row_;
    std::uint32_t next_ = 0;
};

} // namespace

TiffForm TiffFormOf(PictureSource& source, const PictureControl& control) {
    TiffFile file(source, control);
    const PictureSize size = SizeOf(file.get(), control);
    if (!TIFFLastDirectory(file.get())) return {size, true};
    FormOf(file.get(), size); // throws for what isn't served
    return {size, false};
}

void ShrinkTiff(PictureSource& source, PictureTarget& target, const ShrinkStep& step,
                const PictureControl& control) {
    TiffFile from(source, control);
    TiffRows rows(from, control);
    const PictureSize to = SizeAfter(rows.Form().size, step);
    TiffFile file(target, TIFFIsBigEndian(from.get()) != 0);
    TiffWriter writer(file, from.get(), rows.Form(), to, step);
    ShrinkAndStampRows(rows, writer, to, step, TiffShort(from.get(), TIFFTAG_ORIENTATION), control);
    file.Close();
}

std::unique_ptr<RowReader> OpenTiffRows(TiffFile& file, const PictureControl& control) {
    return std::make_unique<TiffRows>(file, control, LabPictures::Served);
}

} // namespace transforms
