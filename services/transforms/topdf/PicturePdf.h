// Pictures as PDFs, without loss: a page each, and a page for each page of a TIFF file.
#pragma once

#include <string>

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/topdf/PageLayout.h"

namespace transforms {

struct PicturePdfRequest {
    PdfPageSize page = PdfPageSize::AsPicture;
    std::wstring heifLibrary; // full path of the DLL, which may be missing
};

// Outcome Written: the target is a whole PDF. A JPEG is in it as it was, up to the picture's end;
// other pictures have their pixels, alpha and depth, deflated. Profiles are kept, and the pages
// show the pictures upright. Other data about a picture isn't carried, but for what is inside a
// JPEG. Unchanged: an animation. Unsupported: no picture, or one that nothing here decodes; nothing
// is written then. The target may have been begun for Cancelled and the failures. Throws nothing.
// Uses a second thread for its time. Equal files give equal bytes.
PictureOutcome MakePicturePdf(PictureSource& source, PictureTarget& target,
                              const PicturePdfRequest& request,
                              const PictureControl& control) noexcept;

} // namespace transforms
