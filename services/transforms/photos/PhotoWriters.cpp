// The PNG library's callbacks throw through its C code, whose frames this platform can unwind.
#include "services/transforms/photos/PhotoWriters.h"

#include <png.h>

#include "services/transforms/codecs/JpegLibrary.h"
#include "services/transforms/codecs/JpegTables.h"
#include "services/transforms/raster/ExifValues.h"
#include "services/transforms/raster/StampedRows.h"

namespace transforms {
namespace {

// The EXIF marker and what precedes the data in it.
constexpr int kExifMarker = JPEG_APP0 + 1;
constexpr std::uint8_t kExifMark[] = {'E', 'x', 'i', 'f', 0, 0};
constexpr std::size_t kMostInMarker = 65533;
// Smaller code costs the coefficients of the whole picture in memory, two bytes each.
constexpr std::uint64_t kMostForSmallerCode = 192ull << 20;

class JpegRows final : public RowWriter {
public:
    explicit JpegRows(JpegWriter& jpeg) noexcept : jpeg_(jpeg) {}
    void Write(const std::uint8_t* row) override {
        JSAMPROW rows[] = {const_cast<JSAMPROW>(row)};
        jpeg_write_scanlines(&jpeg_, rows, 1);
    }

private:
    JpegWriter& jpeg_;
};

void SetForm(JpegWriter& jpeg, const RasterForm& form, const PhotoWriting& writing) {
    jpeg.image_width = form.size.width;
    jpeg.image_height = form.size.height;
    jpeg.input_components = static_cast<int>(form.channels);
    jpeg.in_color_space = form.channels == 1 ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, writing.quality, TRUE);
    if (writing.step) CoarsenTables(jpeg, *writing.step);
    jpeg.dct_method = JDCT_ISLOW;
    if (writing.hasFineColours)
        jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor = 1;
    const std::uint64_t samples = std::uint64_t{form.size.width} * form.size.height * form.channels;
    jpeg.optimize_coding = 2 * samples <= kMostForSmallerCode;
    // The resolution is in the EXIF data, where there are some.
    jpeg.write_JFIF_header = writing.exif.empty();
}

void WriteMarkers(JpegWriter& jpeg, const PhotoWriting& writing, const PictureBytes& carried) {
    PictureBytes exif(std::begin(kExifMark), std::end(kExifMark));
    exif.insert(exif.end(), carried.begin(), carried.end());
    if (!carried.empty() && exif.size() <= kMostInMarker)
        jpeg_write_marker(&jpeg, kExifMarker, exif.data(), static_cast<unsigned>(exif.size()));
    if (!writing.profile.empty())
        jpeg_write_icc_profile(&jpeg, writing.profile.data(),
                               static_cast<unsigned>(writing.profile.size()));
}

RasterForm WrittenForm(const RowReader& rows, const PhotoWriting& writing) noexcept {
    RasterForm form = rows.Form();
    if (writing.step) form.size = SizeAfter(form.size, *writing.step);
    return form;
}

// EXIF data for the size that is written.
PictureBytes WrittenExif(const PhotoWriting& writing, PictureSize size) {
    PictureBytes exif = writing.exif;
    if (writing.step) SetExifSize(exif, size);
    return exif;
}

void WriteRows(RowReader& rows, RowWriter& writer, const PhotoWriting& writing, PictureSize size,
               const PictureControl& control) {
    ShrinkAndStampRows(rows, writer, size, writing.step ? *writing.step : ShrinkStep{},
                       kUprightOrientation, control);
}

// What each library writes at most, of one side.
constexpr std::uint32_t kMostJpegPixels = 65'500;
constexpr std::uint32_t kMostPngPixels = 1'000'000;

void ThrowIfLonger(PictureSize size, std::uint32_t most) {
    if (size.width > most || size.height > most) throw PictureFailure{PictureOutcome::TooLarge};
}

[[noreturn]] void Fail(png_structp, png_const_charp) {
    throw PictureFailure{PictureOutcome::OutOfMemory};
}
void Ignore(png_structp, png_const_charp) {}

class PngRows final : public RowWriter {
public:
    explicit PngRows(PictureTarget& target) : file_(target) {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, Fail, Ignore);
        info_ = png_ ? png_create_info_struct(png_) : nullptr;
        if (!info_) {
            png_destroy_write_struct(&png_, &info_);
            throw PictureFailure{PictureOutcome::OutOfMemory};
        }
    }
    ~PngRows() override { png_destroy_write_struct(&png_, &info_); }
    PngRows(const PngRows&) = delete;
    PngRows& operator=(const PngRows&) = delete;

    void Start(const RasterForm& form, const PhotoWriting& writing) {
        constexpr int kTypes[] = {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA,
                                  PNG_COLOR_TYPE_RGB, PNG_COLOR_TYPE_RGB_ALPHA};
        png_set_write_fn(png_, this, Append, [](png_structp) {});
        png_set_benign_errors(png_, 1); // a profile that the library refuses is left out
        png_set_IHDR(png_, info_, form.size.width, form.size.height, 8, kTypes[form.channels - 1],
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
        if (!writing.profile.empty())
            png_set_iCCP(png_, info_, "ICC profile", PNG_COMPRESSION_TYPE_BASE,
                         writing.profile.data(), static_cast<png_uint_32>(writing.profile.size()));
        PictureBytes exif = WrittenExif(writing, form.size);
        if (!exif.empty())
            png_set_eXIf_1(png_, info_, static_cast<png_uint_32>(exif.size()), exif.data());
        png_write_info(png_, info_);
    }
    void Write(const std::uint8_t* row) override { png_write_row(png_, row); }
    void Finish() {
        png_write_end(png_, nullptr);
        Flush();
    }

private:
    static void Append(png_structp png, png_bytep bytes, std::size_t count) {
        auto& rows = *static_cast<PngRows*>(png_get_io_ptr(png));
        rows.buffer_.insert(rows.buffer_.end(), bytes, bytes + count);
        if (rows.buffer_.size() >= 64 * 1024) rows.Flush();
    }
    void Flush() {
        WritePicture(file_, offset_, buffer_);
        offset_ += buffer_.size();
        buffer_.clear();
    }

    PictureTarget& file_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::uint64_t offset_ = 0;
    PictureBytes buffer_;
};

} // namespace

void WriteJpegPhoto(RowReader& rows, PictureTarget& target, const PhotoWriting& writing,
                    const PictureControl& control) {
    ThrowIfLonger(rows.Form().size, kMostJpegPixels);
    const RasterForm form = WrittenForm(rows, writing);
    JpegWriter jpeg(target);
    SetForm(jpeg, form, writing);
    jpeg_start_compress(&jpeg, TRUE);
    WriteMarkers(jpeg, writing, WrittenExif(writing, form.size));
    JpegRows writer(jpeg);
    WriteRows(rows, writer, writing, form.size, control);
    jpeg_finish_compress(&jpeg);
}

void WritePngPhoto(RowReader& rows, PictureTarget& target, const PhotoWriting& writing,
                   const PictureControl& control) {
    ThrowIfLonger(rows.Form().size, kMostPngPixels);
    const RasterForm form = WrittenForm(rows, writing);
    PngRows writer(target);
    writer.Start(form, writing);
    WriteRows(rows, writer, writing, form.size, control);
    writer.Finish();
}

} // namespace transforms
