// A stamp on pages whose contents leave a graphics state, marked content or a text open.
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <qpdf/QPDFPageDocumentHelper.hh>

#include "services/transforms/watermark/PdfStamp.h"
#include "tests/unit/services/transforms/documents/PdfSamples.h"
#include "tests/unit/services/transforms/personal/Samples.h"

namespace {

using namespace transforms;
using namespace samples;

class Square final : public Stamp {
public:
    PlacedStamp For(PictureSize) const override {
        return {20, 10, {20, 20}, PictureBytes(20 * 20 * 4, 77)};
    }
};

std::string PageWith(const std::string& contents) {
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R>>");
    pdf.Add("<</Type /Pages /Kids [3 0 R] /Count 1>>");
    pdf.Add("<</Type /Page /Parent 2 0 R /MediaBox [0 0 200 100] /Contents 4 0 R>>");
    pdf.AddStream("", contents);
    return pdf.File();
}

std::string ContentsOf(const std::string& file) {
    QPDF pdf;
    pdf.processMemoryFile("a test's file", file.data(), file.size());
    std::string all;
    for (auto& part : QPDFPageDocumentHelper(pdf).getAllPages().at(0).getPageContents()) {
        const auto data = part.getStreamData();
        all.append(reinterpret_cast<const char*>(data->getBuffer()), data->getSize()).append("\n");
    }
    return all;
}

std::string Stamped(const std::string& contents) {
    const StampedPdf result = StampPdf(BytesOf(PageWith(contents)), Square(), {});
    EXPECT_EQ(result.outcome, CleanOutcome::Cleaned);
    return ContentsOf(SampleOf(result.bytes));
}

using Matrix = std::array<double, 6>;

Matrix Product(const Matrix& a, const Matrix& b) {
    return {a[0] * b[0] + a[1] * b[2],        a[0] * b[1] + a[1] * b[3],
            a[2] * b[0] + a[3] * b[2],        a[2] * b[1] + a[3] * b[3],
            a[4] * b[0] + a[5] * b[2] + b[4], a[4] * b[1] + a[5] * b[3] + b[5]};
}

// The matrix at each "Do", by the name that is drawn, as a viewer has it: a "Q" without its "q" is
// passed over.
std::map<std::string, Matrix> Drawn(const std::string& contents) {
    std::map<std::string, Matrix> drawn;
    Matrix matrix{1, 0, 0, 1, 0, 0};
    std::vector<Matrix> saved;
    std::vector<std::string> words;
    std::istringstream text(contents);
    for (std::string word; text >> word; words.push_back(word)) {
        if (word == "q") saved.push_back(matrix);
        if (word == "Do") drawn[words.back()] = matrix;
        if (word == "Q" && !saved.empty()) {
            matrix = saved.back();
            saved.pop_back();
        }
        if (word != "cm") continue;
        Matrix by;
        for (int i = 0; i < 6; ++i) by[i] = std::stod(words[words.size() - 6 + i]);
        matrix = Product(by, matrix);
    }
    EXPECT_TRUE(saved.empty() || contents.find("/ObStamp") == contents.npos);
    return drawn;
}

TEST(OpenContents, LeaveTheStampAtItsPlace) {
    const Matrix right = Drawn(Stamped("/Own Do")).at("/ObStamp1");
    for (const char* contents :
         {"2 0 0 2 9 9 cm /Own Do", "q 2 0 0 2 9 9 cm /Own Do", "q q 3 0 0 3 0 0 cm q /Own Do",
          "q 2 0 0 2 0 0 cm Q Q Q 2 0 0 2 0 0 cm /Own Do", "Q q 2 0 0 2 5 5 cm /Own Do",
          "0 1 -1 0 0 0 cm Q Q /Own Do q"}) {
        const std::string stamped = Stamped(contents);
        EXPECT_EQ(Drawn(stamped).at("/ObStamp1"), right) << stamped;
        EXPECT_EQ(Drawn(stamped).at("/Own"), Drawn(contents).at("/Own")) << stamped;
    }
}

TEST(OpenContents, AreCountedInOperatorsAlone) {
    // The data of a picture inside the contents, a text, a name and a comment.
    for (const char* contents : {"BI /W 3 /H 1 /BPC 8 /CS /G ID q q EI /Own Do",
                                 "BT ( q Q q ) Tj ET /Own Do", "/q gs /Own Do", "% q q\n/Own Do"}) {
        const std::string stamped = Stamped(contents);
        const auto after = stamped.substr(stamped.find("/Own Do"));
        EXPECT_EQ(after.find("\nQ"), after.rfind("\nQ")) << stamped; // one is written
        EXPECT_NE(after.find("\nQ"), after.npos);
    }
}

TEST(OpenContents, StayAsTheyAreWhenNothingIsOpen) {
    EXPECT_NE(Stamped("q 1 0 0 1 0 0 cm Q").find("\nq 1 0 0 1 0 0 cm Q\n"), std::string::npos);
}

// A stamp inside marked content of a layer is hidden with it, and inside a text it isn't drawn.
TEST(OpenContents, AreClosedBeforeTheStamp) {
    for (const auto& [contents, closing] : {std::pair("/OC /L BDC q /Own Do Q", "\nEMC\nQ\n"),
                                            {"/a BMC /b BMC EMC q", "\nEMC\nQ\nQ\n"},
                                            {"BT (x) Tj", "\nET\nQ\n"},
                                            {"q /OC /L BDC BT", "\nET\nEMC\nQ\nQ\n"},
                                            {"EMC ET /a BMC EMC BT ET", "\nQ\n"}}) {
        const std::string stamped = Stamped(contents);
        const auto begin = stamped.find(contents) + std::string(contents).size();
        const auto end = stamped.find("/Artifact BMC");
        ASSERT_LT(begin, end);
        const std::string between = stamped.substr(begin, end - begin);
        EXPECT_NE(between.find(closing), between.npos) << between;
        EXPECT_EQ(between.find_first_not_of("\nETMCQ"), between.npos) << between;
    }
}

} // namespace
