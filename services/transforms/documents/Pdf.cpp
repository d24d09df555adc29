#include "services/transforms/documents/Pdf.h"

#include <exception>
#include <utility>

#include <qpdf/QPDF.hh>

#include "services/transforms/documents/PdfDictionaries.h"
#include "services/transforms/documents/PdfFile.h"
#include "services/transforms/documents/PdfPages.h"
#include "services/transforms/documents/PdfPictures.h"
#include "services/transforms/documents/PdfWalk.h"

namespace transforms::documents {
namespace {

using namespace personal;

// Where readers look for the header; space before it goes.
constexpr std::size_t kHeaderWithin = 1024;

std::size_t CountOf(std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != text.npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

// Each version that was appended to a file has its own end; a file that is ordered for the web has
// one more.
bool HasOldVersions(Bytes file) {
    constexpr std::size_t kFirstObject = 1024;
    const auto text = TextOf(file);
    const bool isLinearized = text.substr(0, kFirstObject).find("/Linearized") != text.npos;
    return CountOf(text, "startxref") > (isLinearized ? 2 : 1);
}

class PdfAnalyzer {
public:
    PdfAnalyzer(Bytes file, const DocumentControl& control) : file_(file), control_(control) {}

    Analysis Run() {
        OpenPdf(pdf_, file_, control_);
        if (const auto refusal = RefusalOf(pdf_)) return Failed(*refusal);
        PagesOf(pdf_); // throws when there are none, or a tree of them that nobody should read
        CleanTrailer();
        VisitPdfObjects(
            pdf_.getRoot(), [&](QPDFObjectHandle& object) { Take(object); }, control_.steps);
        if (isSigned_) return Failed(CleanOutcome::Signed);
        // Streams are copied as they are coded, so that no page changes.
        OwnedBytes written = WritePdf(pdf_, PdfStreams::AsTheyAre, control_.steps);
        if (pdf_.anyWarnings()) return Failed(CleanOutcome::Damaged);
        return Conclude(std::move(written));
    }

private:
    // The writer makes the identifier of the content, if there is no earlier one to go on with. One
    // that is part of the key has to stay.
    void CleanTrailer() {
        auto trailer = pdf_.getTrailer();
        auto id = trailer.getKey("/ID");
        const bool stays = KeyHasId(pdf_);
        hasId_ = !id.isNull() && !stays;
        CleanPdfTrailer(trailer, analysis_.found);
        if (stays) trailer.replaceKey("/ID", id);
    }

    void Take(QPDFObjectHandle& object) {
        if (object.isStream()) {
            auto dictionary = object.getDict();
            isSigned_ |= CleanPdfDictionary(dictionary, analysis_.found);
            CleanPdfPicture(pdf_, object, analysis_.found);
        } else if (object.isDictionary()) {
            isSigned_ |= CleanPdfDictionary(object, analysis_.found);
        }
    }

    // A file that was written like this before is the same again. Otherwise something went, if only
    // the order and spacing of its parts.
    Analysis Conclude(OwnedBytes written) {
        if (std::ranges::equal(written, file_)) return std::move(analysis_);
        if (hasId_) analysis_.found.Note(FindingKind::DocumentId);
        if (HasOldVersions(file_)) analysis_.found.Note(FindingKind::OldVersions);
        if (analysis_.found.IsEmpty()) analysis_.found.Note(FindingKind::FileStructure);
        analysis_.parts.Add(std::move(written));
        return std::move(analysis_);
    }

    Bytes file_;
    const DocumentControl& control_;
    QPDF pdf_;
    Analysis analysis_;
    bool hasId_ = false;
    bool isSigned_ = false;
};

} // namespace

bool IsPdf(Bytes file) {
    auto text = TextOf(file.first(std::min(file.size(), kHeaderWithin)));
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    return text.starts_with("%PDF-");
}

Analysis AnalyzePdf(Bytes file, const DocumentControl& control) {
    try {
        return PdfAnalyzer(file, control).Run();
    } catch (const std::exception&) {
        return Failed(OutcomeOfPdfError());
    }
}

} // namespace transforms::documents
