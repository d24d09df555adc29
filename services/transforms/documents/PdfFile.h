// A PDF that is read from memory and written to memory: how the library is set up for all work on
// PDFs, and what its errors mean.
#pragma once

#include <qpdf/QPDF.hh>

#include "services/transforms/personal/Bytes.h"
#include "services/transforms/personal/Findings.h"
#include "services/transforms/raster/PictureControl.h"

namespace transforms::documents {

// Reads the file's tables; nothing in it is guessed. The bytes outlive the object, and so does
// `steps`, which may be null: it learns of everything that is read, until the object's end. Throws
// what the library throws: see OutcomeOfPdfError.
void OpenPdf(QPDF& pdf, personal::Bytes file, PictureSteps* steps = nullptr);

// How streams are written: as they are coded, or compressed where they aren't coded at all.
enum class PdfStreams { AsTheyAre, Compressed };

// Equal objects give equal bytes. `steps`, which may be null, learns that the work goes on. Throws
// what the library throws.
personal::OwnedBytes WritePdf(QPDF& pdf, PdfStreams streams, PictureSteps* steps = nullptr);

// Encrypted or Damaged, inside a catch block. Throws std::bad_alloc on.
CleanOutcome OutcomeOfPdfError();

} // namespace transforms::documents
