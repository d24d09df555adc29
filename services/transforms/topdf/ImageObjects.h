// The objects of a PDF that make up one picture: its pixels, what is transparent of it, and its
// profile.
#pragma once

#include <span>
#include <string>

#include "services/transforms/raster/PictureControl.h"
#include "services/transforms/topdf/PagePicture.h"
#include "services/transforms/topdf/PdfOutput.h"

namespace transforms {

// Writes the picture without loss, as it is read, and returns the number of its object. Only what
// is transparent is in memory as a whole, coded. Uses a second thread, in which the rows are read.
// Throws PictureFailure.
unsigned WriteImage(PdfOutput& pdf, PagePicture& picture, const PictureControl& control);

// The colour space of samples, as a dictionary's entries name it: by the profile, which becomes an
// object of its own, if it is a sound one for them.
std::string ColourSpace(PdfOutput& pdf, PhotoSamples samples,
                        std::span<const std::uint8_t> profile);

// The first entries of a picture's dictionary.
std::string ImageEntries(PictureSize size, unsigned bits, const std::string& space);

// " /Decode [...]", which makes each colour's end its beginning.
std::string InvertedDecode(PhotoSamples samples);

} // namespace transforms
