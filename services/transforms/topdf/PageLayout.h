// How large a page is, and where the picture is on it.
#pragma once

#include <string>

#include "services/transforms/photos/TiffDirectories.h"
#include "services/transforms/raster/ShrinkStep.h"

namespace transforms {

// Pixels an inch of the stored rows and columns; 0 when the file doesn't name them.
struct Resolution {
    double across = 0;
    double down = 0;
};

// Of EXIF data and of a TIFF file's directory. EXIF writes 72 where nobody knows, so that number
// counts as none.
Resolution ResolutionOfExif(const TiffDirectories& exif);

enum class PdfPageSize { AsPicture, A4, Letter };

struct PageLayout {
    double width = 0, height = 0; // of the page, in points
    std::string matrix;           // of the picture, as PDF writes it
};

// The picture is shown by its orientation (1 to 8, as in EXIF). As the picture: the page has
// the picture's size at its resolution where that is 50 to 2,400 pixels an inch; otherwise the page
// is as large as fits an A4 sheet. A4 and Letter: a page of that size, turned as the picture is,
// with the picture in its middle, at its resolution if it fits so and otherwise as large as fits.
PageLayout LayOut(PictureSize stored, unsigned orientation, Resolution resolution,
                  PdfPageSize page);

} // namespace transforms
