#include "services/transforms/documents/PdfFile.h"

#include <exception>
#include <memory>
#include <new>
#include <utility>

#include <qpdf/Buffer.hh>
#include <qpdf/BufferInputSource.hh>
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

// The library reads through it for as long as objects are asked for, streams too.
class TalkingInput : public BufferInputSource {
public:
    TalkingInput(Bytes file, PictureSteps* steps)
        : BufferInputSource("pdf", new Buffer(BytesOf(file), file.size()), true), steps_(steps) {}
    std::size_t read(char* buffer, std::size_t length) override {
        if (steps_) steps_->Step();
        return BufferInputSource::read(buffer, length);
    }
    qpdf_offset_t findAndSkipNextEOL() override {
        if (steps_) steps_->Step();
        return BufferInputSource::findAndSkipNextEOL();
    }

private:
    // The library's buffer is only read: its type lacks the const.
    static unsigned char* BytesOf(Bytes file) {
        return reinterpret_cast<unsigned char*>(const_cast<std::byte*>(file.data()));
    }

    PictureSteps* steps_;
};

} // namespace

void OpenPdf(QPDF& pdf, Bytes file, PictureSteps* steps) {
    pdf.setSuppressWarnings(true);
    pdf.setAttemptRecovery(false);
    pdf.processInputSource(std::make_shared<TalkingInput>(file, steps));
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
