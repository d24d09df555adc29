// What leaves the dictionaries of a PDF.
#pragma once

#include <qpdf/QPDFObjectHandle.hh>

#include "services/transforms/personal/Analysis.h"

namespace transforms::documents {

// Leaves what a reader needs to find the objects.
void CleanPdfTrailer(QPDFObjectHandle& trailer, personal::FindingCounter& found);

// Cleans one dictionary, of a stream too, without those inside it. True when it is a signature.
bool CleanPdfDictionary(QPDFObjectHandle& dictionary, personal::FindingCounter& found);

bool IsPdfSignature(QPDFObjectHandle dictionary);

} // namespace transforms::documents
