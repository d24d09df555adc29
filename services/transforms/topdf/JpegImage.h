// JPEG pictures in a PDF: their coded data as they are.
#pragma once

#include <variant>

#include "services/transforms/topdf/ImageObjects.h"

namespace transforms {

// A JPEG whose data a PDF can contain.
struct JpegImage {
    PictureSize size;
    PhotoSamples samples = PhotoSamples::Rgb;
    bool isInverted = false;    // of inks, as some programs store them
    bool isConverted = true;    // stored as brightness and two colours
    bool hasColourMark = false; // the data say themselves whether they are converted
    std::uint64_t bytes = 0;    // up to the picture's end
    PictureBytes profile;
    unsigned orientation = 1;
    Resolution resolution;
};

// Decodes the whole file, so that what is damaged comes out here. The second form is for
// arithmetically coded JPEGs, which no PDF can contain. `source` must outlive the result. Throws
// PictureFailure: Unsupported for more than 8 bits a sample.
std::variant<JpegImage, PagePicture> ReadJpegImage(PictureSource& source,
                                                   const PictureControl& control);

// Writes the data up to the picture's end, unchanged, and returns the number of the object. Throws
// PictureFailure.
unsigned WriteImage(PdfOutput& pdf, const JpegImage& image, PictureSource& source,
                    const PictureControl& control);

} // namespace transforms
