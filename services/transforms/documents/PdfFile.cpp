#include "services/transforms/documents/PdfFile.h"

#include <exception>
#include <new>
#include <utility>

#include <qpdf/Pipeline.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QPDFWriter.hh>

namespace transforms::documents {
namespace {

using namespace personal;

// Takes what the library writes.
class MemoryPipeline : public Pipeline {
public:
    explicit MemoryPipeline(PictureSteps* steps) : Pipeline("memory", nullptr), steps_(steps) {}
    void write(const unsigned char* bytes, std::size_t size) override {
        if (steps_) steps_->Step();
        Append(written_, std::as_bytes(std::span(bytes, size)));
    }
    void finish() override {}
    OwnedBytes Take() { return std::move(written_); }

private:
    PictureSteps* steps_;
    OwnedBytes written_;
};

} // namespace

void OpenPdf(QPDF& pdf, Bytes file) {
    pdf.setSuppressWarnings(true);
    pdf.setAttemptRecovery(false);
    pdf.processMemoryFile("pdf", TextOf(file).data(), file.size());
}

OwnedBytes WritePdf(QPDF& pdf, PdfStreams streams, PictureSteps* steps) {
    MemoryPipeline memory(steps);
    QPDFWriter writer(pdf);
    writer.setOutputPipeline(&memory);
    writer.setCompressStreams(streams == PdfStreams::Compressed);
    writer.setDecodeLevel(qpdf_dl_none);
    writer.setObjectStreamMode(qpdf_o_preserve);
    writer.setDeterministicID(true);
    writer.write();
    return memory.Take();
}

CleanOutcome OutcomeOfPdfError() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const QPDFExc& error) {
        const auto code = error.getErrorCode();
        const bool isAboutCiphers = code == qpdf_e_password || code == qpdf_e_unsupported;
        return isAboutCiphers ? CleanOutcome::Encrypted : CleanOutcome::Damaged;
    } catch (const std::exception&) {
        return CleanOutcome::Damaged;
    }
}

} // namespace transforms::documents
