#include "services/transforms/topdf/JpegImage.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "services/transforms/codecs/JpegMetadata.h"

namespace transforms {
namespace {

Resolution ResolutionOf(const JpegReader& jpeg) {
    constexpr std::string_view kExif("Exif\0\0", 6);
    for (auto* marker = jpeg.marker_list; marker; marker = marker->next) {
        if (marker->marker != JPEG_APP0 + 1 || marker->data_length < kExif.size() ||
            std::memcmp(marker->data, kExif.data(), kExif.size()) != 0)
            continue;
        MemorySource memory({marker->data + kExif.size(), marker->data_length - kExif.size()});
        const TiffDirectories exif(memory);
        constexpr std::uint32_t kAcross = 0x11A;
        if (FindEntry(exif.Entries(exif.First()), kAcross)) return ResolutionOfExif(exif);
    }
    if (!jpeg.saw_JFIF_marker || jpeg.density_unit == 0) return {};
    const double scale = jpeg.density_unit == 2 ? 2.54 : 1; // a centimetre
    return {jpeg.X_density * scale, jpeg.Y_density * scale};
}

PhotoSamples SamplesOf(const JpegReader& jpeg) {
    switch (jpeg.num_components) {
    case 1:
        return PhotoSamples::Grey;
    case 3:
        return PhotoSamples::Rgb;
    case 4:
        return PhotoSamples::Cmyk;
    default:
        throw PictureFailure{PictureOutcome::Unsupported};
    }
}

// Decodes at an eighth of the size, which reads all data and takes little time.
void DecodeAll(JpegReader& jpeg) {
    jpeg.scale_num = 1;
    jpeg.scale_denom = 8;
    jpeg.dct_method = JDCT_IFAST;
    jpeg.do_fancy_upsampling = FALSE;
    jpeg.out_color_space = jpeg.jpeg_color_space;
    jpeg_start_decompress(&jpeg);
    PictureBytes row(static_cast<std::size_t>(jpeg.output_width) *
                     static_cast<std::size_t>(jpeg.output_components));
    JSAMPROW rows[] = {row.data()};
    while (jpeg.output_scanline < jpeg.output_height) {
        jpeg.control().ThrowIfCancelled();
        jpeg_read_scanlines(&jpeg, rows, 1);
    }
    jpeg_finish_decompress(&jpeg);
}

// The decoded rows of a picture whose data can't be used.
class JpegRows final : public RowReader {
public:
    JpegRows(PictureSource& source, const PictureControl& control) : jpeg_(source, control) {
        jpeg_read_header(&jpeg_, TRUE);
        jpeg_.EndHeader();
        if (jpeg_.num_components == 4) jpeg_.out_color_space = JCS_CMYK;
        jpeg_.dct_method = JDCT_ISLOW;
        jpeg_start_decompress(&jpeg_);
        form_.size = {jpeg_.output_width, jpeg_.output_height};
        form_.channels = static_cast<unsigned>(jpeg_.output_components);
    }
    const RasterForm& Form() const noexcept override { return form_; }
    void Read(std::uint8_t* row) override {
        JSAMPROW rows[] = {row};
        jpeg_read_scanlines(&jpeg_, rows, 1);
    }

private:
    JpegReader jpeg_;
    RasterForm form_;
};

PagePicture Decoded(const JpegImage& image, PictureSource& source, const PictureControl& control) {
    PagePicture picture;
    picture.rows = std::make_unique<JpegRows>(source, control);
    picture.size = image.size;
    picture.samples = image.samples;
    picture.isInverted = image.isInverted;
    picture.profile = image.profile;
    picture.orientation = image.orientation;
    picture.resolution = image.resolution;
    return picture;
}

} // namespace

std::variant<JpegImage, PagePicture> ReadJpegImage(PictureSource& source,
                                                   const PictureControl& control) {
    JpegReader jpeg(source, control);
    KeepMarkers(jpeg);
    jpeg_read_header(&jpeg, TRUE);
    jpeg.EndHeader();
    control.ThrowIfTooLarge(jpeg.image_width, jpeg.image_height);
    JpegImage image;
    image.size = {jpeg.image_width, jpeg.image_height};
    image.samples = SamplesOf(jpeg);
    image.isInverted = image.samples == PhotoSamples::Cmyk && jpeg.saw_Adobe_marker;
    image.isConverted = jpeg.jpeg_color_space == JCS_YCbCr || jpeg.jpeg_color_space == JCS_YCCK;
    image.hasColourMark = jpeg.saw_Adobe_marker;
    image.profile = JpegProfile(jpeg);
    image.orientation = JpegOrientation(jpeg);
    image.resolution = ResolutionOf(jpeg);
    const bool isArithmetic = jpeg.arith_code;
    DecodeAll(jpeg);
    image.bytes = jpeg.Position();
    if (isArithmetic) return Decoded(image, source, control);
    return image;
}

unsigned WriteImage(PdfOutput& pdf, const JpegImage& image, PictureSource& source,
                    const PictureControl& control) {
    std::string entries =
        ImageEntries(image.size, 8, ColourSpace(pdf, image.samples, image.profile));
    if (image.isInverted) entries += InvertedDecode(image.samples);
    entries += " /Filter /DCTDecode";
    if (image.samples != PhotoSamples::Grey && !image.hasColourMark)
        entries += image.isConverted ? " /DecodeParms <</ColorTransform 1>>"
                                     : " /DecodeParms <</ColorTransform 0>>";
    const unsigned number = pdf.Reserve();
    pdf.BeginStream(number, entries);
    PictureBytes piece(256 * 1024);
    for (std::uint64_t at = 0; at < image.bytes;) {
        control.ThrowIfCancelled();
        piece.resize(
            static_cast<std::size_t>(std::min<std::uint64_t>(piece.size(), image.bytes - at)));
        if (ReadPicture(source, at, piece) != piece.size())
            throw PictureFailure{PictureOutcome::ReadFailed};
        pdf.Append(piece);
        at += piece.size();
    }
    pdf.EndStream();
    return number;
}

} // namespace transforms
