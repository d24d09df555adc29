// The table of kinds of pictures and how each becomes pages.
#pragma once

#include <string>

#include "services/transforms/topdf/ImageObjects.h"

namespace transforms {

// A picture that was written, for the page that shows it.
struct WrittenImage {
    unsigned number = 0; // of its object
    PictureSize size;
    unsigned orientation = 1;
    Resolution resolution;
};

class PageSink {
public:
    virtual ~PageSink() = default;
    virtual void AddPage(const WrittenImage& image) = 0;
};

// Writes the pictures of the file in their order. False, with nothing written, for an animation.
// `heifLibrary` as in PhotoRequest. Throws PictureFailure: Unsupported, with nothing written, for
// another kind of file and for a form that nothing here decodes.
bool WritePictures(PdfOutput& pdf, PictureSource& source, const std::wstring& heifLibrary,
                   PageSink& pages, const PictureControl& control);

} // namespace transforms
