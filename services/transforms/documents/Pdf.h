// PDF: the file is written anew from the objects that its pages and catalog refer to, so that no
// older version of them stays, without information, XMP, private data and who wrote its comments.
#pragma once

#include "services/transforms/personal/Analysis.h"
#include "services/transforms/raster/PictureControl.h"

namespace transforms::documents {

bool IsPdf(personal::Bytes file);

// The parts are one made part, the whole new file; nothing is found in a file that is written as
// this function writes it. Damaged when anything in the file has to be guessed, Encrypted when it
// is, with an empty password too, Signed when a signature is in it. `steps`, which may be null,
// learns that the work goes on.
personal::Analysis AnalyzePdf(personal::Bytes file, PictureSteps* steps);

} // namespace transforms::documents
