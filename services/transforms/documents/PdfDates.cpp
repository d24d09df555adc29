#include "services/transforms/documents/PdfDates.h"

#include <algorithm>
#include <exception>
#include <string>
#include <utility>

#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>

#include "services/transforms/documents/PdfFile.h"
#include "services/transforms/documents/PdfPages.h"
#include "services/transforms/documents/PdfStreamSizes.h"

namespace transforms::documents {
namespace {

using namespace personal;
using Object = QPDFObjectHandle;

constexpr const char* kDates[] = {"/CreationDate", "/ModDate"};
// The second is the checksum that one of the office suites adds: it is made of the dates too.
constexpr const char* kOfTrailer[] = {"/ID", "/DocChecksum"};
// The names by which XMP declares the standard that the file follows.
constexpr const char* kStandards[] = {"pdfaid", "pdfuaid"};

bool NamesAStandard(Object metadata) {
    const auto data = metadata.getStreamData(qpdf_dl_generalized);
    const std::string text(reinterpret_cast<const char*>(data->getBuffer()), data->getSize());
    return std::ranges::any_of(kStandards,
                               [&](const char* name) { return text.find(name) != text.npos; });
}

void RemoveDates(QPDF& pdf, PictureSteps* steps) {
    auto trailer = pdf.getTrailer();
    auto information = trailer.getKey("/Info");
    for (const char* key : kDates) {
        if (information.isDictionary()) information.removeKey(key);
    }
    for (const char* key : kOfTrailer) trailer.removeKey(key);
    auto catalog = pdf.getRoot();
    auto metadata = catalog.getKey("/Metadata");
    if (!metadata.isStream()) return;
    RequireStreamsFit({metadata}, steps);
    if (!NamesAStandard(metadata)) catalog.removeKey("/Metadata");
}

Analysis Rewritten(Bytes file, const DocumentControl& control) {
    QPDF pdf;
    OpenPdf(pdf, file, control);
    if (pdf.isEncrypted()) return Failed(CleanOutcome::Encrypted);
    PagesOf(pdf); // throws when there are none, or a tree of them that nobody should read
    RemoveDates(pdf, control.steps);
    OwnedBytes written = WritePdf(pdf, PdfStreams::AsTheyAre, control.steps);
    if (pdf.anyWarnings()) return Failed(CleanOutcome::Damaged);
    Analysis analysis;
    analysis.found.Note(FindingKind::Time);
    analysis.parts.Add(std::move(written));
    return analysis;
}

} // namespace

Analysis RemovePdfDates(Bytes file, const DocumentControl& control) {
    try {
        return Rewritten(file, control);
    } catch (const std::exception&) {
        return Failed(OutcomeOfPdfError());
    }
}

} // namespace transforms::documents
