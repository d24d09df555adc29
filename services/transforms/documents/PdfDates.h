// PDFs of other programs without what differs from run to run.
#pragma once

#include "services/transforms/documents/DocumentControl.h"
#include "services/transforms/personal/Analysis.h"

namespace transforms::documents {

// Cleaned, and the parts are one made part: the PDF without the dates of its information, the
// properties that repeat them as XMP, and its checksum; the identifier is made of the content. So
// one document gives equal PDFs whenever a program converts it. XMP stays, with its dates, in a
// file that it marks as PDF/A or PDF/UA, which such a file can't be without. Pages, links,
// bookmarks and tags stay. Otherwise as RefusalOf and OutcomeOfPdfError return; Damaged too when
// anything in the file has to be guessed, Encrypted for every encrypted file. Throws std::bad_alloc
// alone.
personal::Analysis RemovePdfDates(personal::Bytes file, const DocumentControl& control);

} // namespace transforms::documents
