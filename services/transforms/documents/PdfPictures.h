// The JPEG pictures inside a PDF.
#pragma once

#include <qpdf/QPDF.hh>

#include "services/transforms/personal/Analysis.h"

namespace transforms::documents {

// Cleans the stream if it is a picture that is coded as JPEG, under other codings too. A picture
// that can't be cleaned stays and is noted as an embedded file. Throws PdfRefusal with TooLarge for
// one whose other codings hide more than is read.
void CleanPdfPicture(QPDF& pdf, QPDFObjectHandle& stream, personal::FindingCounter& found);

} // namespace transforms::documents
