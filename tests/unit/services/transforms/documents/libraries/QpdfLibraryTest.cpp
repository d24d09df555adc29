// The PDF library as it was built for this system: it reads and writes in memory, writes equal
// bytes for equal documents, and damage is an exception.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>

namespace {

std::string TwoPages() {
    QPDF pdf;
    pdf.emptyPDF();
    QPDFPageDocumentHelper pages(pdf);
    for (int page = 0; page < 2; ++page) {
        auto made = pdf.makeIndirectObject(
            QPDFObjectHandle::parse("<</Type /Page /MediaBox [0 0 200 100] /Resources <<>> >>"));
        made.replaceKey("/Contents", QPDFObjectHandle::newStream(&pdf, "0 0 100 50 re f\n"));
        pages.addPage(QPDFPageObjectHelper(made), false);
    }
    QPDFWriter writer(pdf);
    writer.setOutputMemory();
    writer.setDeterministicID(true);
    writer.write();
    const auto written = writer.getBufferSharedPointer();
    return {reinterpret_cast<const char*>(written->getBuffer()), written->getSize()};
}

std::size_t PagesOf(const std::string& file) {
    QPDF pdf;
    pdf.setSuppressWarnings(true);
    pdf.setAttemptRecovery(false);
    pdf.processMemoryFile("a test's file", file.data(), file.size());
    return pdf.getAllPages().size();
}

TEST(QpdfLibrary, ReadsWhatItWrote) { EXPECT_EQ(PagesOf(TwoPages()), 2u); }

TEST(QpdfLibrary, WritesEqualBytesForEqualDocuments) { EXPECT_EQ(TwoPages(), TwoPages()); }

TEST(QpdfLibrary, ThrowsForAFileThatIsCutOff) {
    const std::string file = TwoPages();
    EXPECT_THROW(PagesOf(file.substr(0, file.size() / 2)), QPDFExc);
}

} // namespace
