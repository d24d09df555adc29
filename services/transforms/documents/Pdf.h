// PDF: the file is written anew from the objects that its pages and catalog refer to, so that no
// older version of them stays, without information, XMP, private data and who wrote its comments.
#pragma once

#include "services/transforms/documents/DocumentControl.h"
#include "services/transforms/personal/Analysis.h"

namespace transforms::documents {

bool IsPdf(personal::Bytes file);

// The parts are one made part, the whole new file, encrypted as the old one; nothing is found in a
// file that is written as this function writes it. Damaged when anything in the file has to be
// guessed, Signed when a signature is in it, and as RefusalOf and OutcomeOfPdfError return.
personal::Analysis AnalyzePdf(personal::Bytes file, const DocumentControl& control);

} // namespace transforms::documents
