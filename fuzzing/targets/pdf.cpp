// PDFs: the input's lines that begin with "%%" end an object each, so that the table of objects is
// right whatever they are. Cleaned: what is found is what is removed, and a result is clean.
// Without dates: so again, nothing changes. Combined with itself: the result is a PDF that can be
// combined again.
#include <cstdio>
#include <string>
#include <string_view>

#include "fuzzing/support/Require.h"
#include "services/transforms/combine/PdfCombine.h"
#include "services/transforms/documents/AnyFile.h"
#include "services/transforms/documents/PdfDates.h"

using namespace transforms;

namespace {

constexpr std::string_view kEnd = "%%";

class PdfText {
public:
    void Add(std::string_view object) {
        offsets_ += Entry(file_.size());
        file_ += std::to_string(++count_) + " 0 obj\n" + std::string(object) + "\nendobj\n";
    }
    // The first object is the catalog, the second the information.
    std::string Whole() const {
        const std::string size = std::to_string(count_ + 1);
        return file_ + "xref\n0 " + size + "\n0000000000 65535 f \n" + offsets_ +
               "trailer\n<</Size " + size + "/Root 1 0 R/Info 2 0 R>>\nstartxref\n" +
               std::to_string(file_.size()) + "\n%%EOF\n";
    }

private:
    static std::string Entry(std::size_t offset) {
        char text[32];
        std::snprintf(text, sizeof text, "%010zu 00000 n \n", offset);
        return text;
    }

    std::string file_ = "%PDF-1.7\n", offsets_;
    int count_ = 0;
};

std::string PdfOf(std::string_view input) {
    PdfText pdf;
    while (!input.empty()) {
        const std::size_t end = input.find(kEnd);
        pdf.Add(input.substr(0, end));
        input.remove_prefix(end == input.npos ? input.size() : end + kEnd.size());
    }
    return pdf.Whole();
}

void CheckCleaned(personal::Bytes file) {
    const CleanedFile cleaned = CleanFile(file);
    Require(CleanFile(file).bytes == cleaned.bytes, "equal files give equal results");
    if (cleaned.outcome != CleanOutcome::Cleaned) return;
    Require(FindInFile(file) == cleaned.removed, "what is found is what is removed");
    Require(FindInFile(cleaned.bytes).empty(), "nothing is found in a result");
    const CleanedFile twice = CleanFile(cleaned.bytes);
    Require(twice.outcome == CleanOutcome::NothingFound, "nothing is removed from a result");
}

// Nothing when the file can't be read as what another program made.
personal::OwnedBytes WithoutDates(personal::Bytes file) {
    const personal::Analysis analysis = documents::RemovePdfDates(file, {});
    personal::OwnedBytes made;
    if (OutcomeOf(analysis) != CleanOutcome::Cleaned) return made;
    for (const personal::Bytes part : analysis.parts.Parts())
        made.insert(made.end(), part.begin(), part.end());
    return made;
}

void CheckWithoutDates(personal::Bytes file) {
    const personal::OwnedBytes made = WithoutDates(file);
    Require(WithoutDates(file) == made, "equal files give equal files without dates");
    Require(made.empty() || WithoutDates(made) == made, "a file without dates stays as it is");
}

class Kept final : public combine::PdfSink {
public:
    bool Write(personal::Bytes bytes) override {
        file.insert(file.end(), bytes.begin(), bytes.end());
        return true;
    }
    personal::OwnedBytes file;
};

// Nothing when the file can't be a part.
personal::OwnedBytes Combined(personal::Bytes file) {
    combine::PdfCombiner combiner;
    for (const char* title : {"first", "second"}) {
        const CleanOutcome outcome = combiner.Add({title, file, true});
        if (outcome != CleanOutcome::Cleaned) return {};
    }
    Kept sink;
    if (!combiner.Write(sink)) return {};
    return std::move(sink.file);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string pdf = PdfOf({reinterpret_cast<const char*>(bytes), size});
    const personal::Bytes file = std::as_bytes(std::span(pdf));
    CheckCleaned(file);
    CheckWithoutDates(file);
    const personal::OwnedBytes twice = Combined(file);
    Require(Combined(file) == twice, "equal parts give equal files");
    Require(twice.empty() || !Combined(twice).empty(), "a result can be combined again");
    return 0;
}
