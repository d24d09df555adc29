#include "services/transforms/codecs/JpegRows.h"

#include "services/transforms/codecs/JpegLibrary.h"
#include "services/transforms/codecs/JpegMetadata.h"

namespace transforms {
namespace {

class JpegRowReader final : public RowReader {
public:
    JpegRowReader(PictureSource& source, const PictureControl& control) : jpeg_(source, control) {
        KeepMarkers(jpeg_);
        jpeg_read_header(&jpeg_, TRUE);
        jpeg_.EndHeader();
        control.ThrowIfTooLarge(jpeg_.image_width, jpeg_.image_height);
        ChooseColours();
        jpeg_start_decompress(&jpeg_);
        form_.size = {jpeg_.output_width, jpeg_.output_height};
        form_.channels = static_cast<unsigned>(jpeg_.output_components);
    }

    const RasterForm& Form() const noexcept override { return form_; }

    void Read(std::uint8_t* row) override {
        jpeg_.control().ThrowIfCancelled();
        JSAMPROW rows[] = {row};
        jpeg_read_scanlines(&jpeg_, rows, 1);
        if (isInverted_) {
            for (std::size_t at = 0; at < form_.RowBytes(); ++at)
                row[at] = static_cast<std::uint8_t>(255 - row[at]);
        }
        if (jpeg_.output_scanline == jpeg_.output_height) jpeg_finish_decompress(&jpeg_);
    }

    PictureBytes Profile() { return JpegProfile(jpeg_); }

    unsigned Orientation() const noexcept { return JpegOrientation(jpeg_); }

private:
    // The program that marks a file as its own stores inks the other way round.
    void ChooseColours() {
        const bool isInk = jpeg_.jpeg_color_space == JCS_CMYK || jpeg_.jpeg_color_space == JCS_YCCK;
        if (isInk) {
            jpeg_.out_color_space = JCS_CMYK;
            isInverted_ = jpeg_.saw_Adobe_marker != FALSE;
        } else {
            const bool isGrey = jpeg_.jpeg_color_space == JCS_GRAYSCALE;
            jpeg_.out_color_space = isGrey ? JCS_GRAYSCALE : JCS_RGB;
        }
    }

    JpegReader jpeg_;
    RasterForm form_;
    bool isInverted_ = false;
};

} // namespace

JpegPixels OpenJpegRows(PictureSource& source, const PictureControl& control) {
    auto rows = std::make_unique<JpegRowReader>(source, control);
    JpegPixels pixels;
    pixels.profile = rows->Profile();
    pixels.orientation = rows->Orientation();
    pixels.rows = std::move(rows);
    return pixels;
}

} // namespace transforms
