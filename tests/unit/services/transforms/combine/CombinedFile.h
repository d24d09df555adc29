// PDFs of a few pages, what they become together, and a reader of that.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include <qpdf/QPDF.hh>

#include "services/transforms/combine/PdfCombine.h"
#include "tests/unit/services/transforms/documents/PdfSamples.h"

namespace samples {

using transforms::CleanOutcome;

// Pages of the sizes 100 + first, 101 + first and so on, so that each can be known again. Page n is
// object n + 3; further objects come after the pages.
inline std::string Pages(int count, int first, const std::string& keysOfFirst = {},
                         const std::string& catalog = {},
                         const std::vector<std::string>& more = {}) {
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R " + catalog + ">>");
    std::string kids;
    for (int page = 0; page < count; ++page) kids += std::to_string(page + 3) + " 0 R ";
    pdf.Add("<</Type /Pages /Kids [" + kids + "] /Count " + std::to_string(count) + ">>");
    for (int page = 0; page < count; ++page) {
        pdf.Add("<</Type /Page /Parent 2 0 R /MediaBox [0 0 " + std::to_string(100 + first + page) +
                " 50] " + (page ? "" : keysOfFirst) + ">>");
    }
    for (const std::string& object : more) pdf.Add(object);
    return pdf.File();
}

struct Part {
    std::string title;
    std::string file;
    bool breaksSignatures = false;
    std::string password = {};
};

class TextSink : public transforms::combine::PdfSink {
public:
    bool Write(transforms::personal::Bytes bytes) override {
        text.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return text.size() <= most;
    }
    std::string text;
    std::size_t most = std::string::npos; // after which it takes no more
};

struct Combination {
    CleanOutcome outcome = CleanOutcome::Damaged; // of the last part that was added
    std::size_t refused = 0;                      // that part's number
    std::string file;                             // empty unless all parts were taken
};

inline Combination Combined(const std::vector<Part>& parts) {
    transforms::combine::PdfCombiner combiner;
    Combination made;
    for (const Part& part : parts) {
        made.refused = combiner.Count();
        made.outcome = combiner.Add({part.title, std::as_bytes(std::span(part.file)),
                                     part.breaksSignatures, part.password});
        if (made.outcome != CleanOutcome::Cleaned) return made;
    }
    TextSink sink;
    if (combiner.Write(sink)) {
        made.file = sink.text;
    } else {
        made.outcome = CleanOutcome::Damaged;
        made.refused = combiner.Failed().value_or(parts.size());
    }
    return made;
}

// Reads what the parts became, without guessing.
class CombinedFile {
public:
    explicit CombinedFile(const std::vector<Part>& parts, const char* password = "")
        : made_(Combined(parts)) {
        EXPECT_EQ(made_.outcome, CleanOutcome::Cleaned);
        pdf_.setSuppressWarnings(true);
        pdf_.setAttemptRecovery(false);
        pdf_.processMemoryFile("combined", made_.file.data(), made_.file.size(), password);
    }
    std::vector<int> Sizes() {
        std::vector<int> sizes;
        for (auto page : pdf_.getAllPages()) sizes.push_back(SizeOf(page));
        return sizes;
    }
    static int SizeOf(QPDFObjectHandle page) {
        return page.getKey("/MediaBox").getArrayItem(2).getIntValueAsInt();
    }
    QPDFObjectHandle Page(std::size_t page) { return pdf_.getAllPages()[page]; }
    QPDFObjectHandle Annotation(std::size_t page, int number = 0) {
        return Page(page).getKey("/Annots").getArrayItem(number);
    }
    QPDFObjectHandle Catalog() { return pdf_.getRoot(); }
    QPDF& Pdf() { return pdf_; }
    const std::string& Bytes() const { return made_.file; }

private:
    Combination made_;
    QPDF pdf_;
};

} // namespace samples
