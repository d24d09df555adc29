// A stamp on the pages of PDFs: where it is on the page as it is shown, and what the file keeps.
#include "services/transforms/watermark/PdfStamp.h"

#include <gtest/gtest.h>

#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>

#include <array>
#include <sstream>

#include "services/transforms/documents/PdfStreamSizes.h"
#include "services/transforms/watermark/TextStamp.h"
#include "tests/unit/services/transforms/documents/BombSamples.h"
#include "tests/unit/services/transforms/documents/PdfSamples.h"
#include "tests/unit/services/transforms/personal/Samples.h"

namespace {

using namespace transforms;
using namespace samples;

// 40 by 20 pixels with its upper left corner at 20, 10: half as many points.
class Corner final : public Stamp {
public:
    mutable std::vector<PictureSize> asked;

    PlacedStamp For(PictureSize shown) const override {
        asked.push_back(shown);
        return {20, 10, {40, 20}, PictureBytes(40 * 20 * 4, 77)};
    }
};

std::string Stamped(const std::string& file, const Stamp& stamp) {
    const StampedPdf result = StampPdf(BytesOf(file), stamp, {});
    EXPECT_EQ(result.outcome, CleanOutcome::Cleaned);
    return SampleOf(result.bytes);
}

CleanOutcome OutcomeOf(const std::string& file) {
    const StampedPdf result = StampPdf(BytesOf(file), Corner(), {});
    EXPECT_TRUE(result.bytes.empty());
    return result.outcome;
}

struct Point {
    double x, y;
};

// Follows the matrices of the page's last drawing; gives where a corner of the unit square is.
Point DrawnAt(const std::string& drawing, Point point) {
    std::istringstream words(drawing);
    std::vector<std::array<double, 6>> matrices;
    std::vector<std::string> operands;
    for (std::string word; words >> word;) {
        if (word == "cm") {
            std::array<double, 6> matrix{};
            for (int i = 0; i < 6; ++i) matrix[i] = std::stod(operands[operands.size() - 6 + i]);
            matrices.push_back(matrix);
        }
        operands.push_back(word);
    }
    for (auto m = matrices.rbegin(); m != matrices.rend(); ++m)
        point = {(*m)[0] * point.x + (*m)[2] * point.y + (*m)[4],
                 (*m)[1] * point.x + (*m)[3] * point.y + (*m)[5]};
    return point;
}

std::string LastDrawing(const std::string& file, std::size_t number = 0) {
    QPDF pdf;
    pdf.processMemoryFile("a test's file", file.data(), file.size());
    auto contents = QPDFPageDocumentHelper(pdf).getAllPages().at(number).getPageContents();
    const auto data = contents.back().getStreamData();
    return {reinterpret_cast<const char*>(data->getBuffer()), data->getSize()};
}

void ExpectCorners(const std::string& page, Point upperLeft, Point lowerRight) {
    const std::string drawing = LastDrawing(Stamped(OnePage(page).File(), Corner()));
    const Point one = DrawnAt(drawing, {0, 1}), other = DrawnAt(drawing, {1, 0});
    EXPECT_NEAR(one.x, upperLeft.x, 0.01) << drawing;
    EXPECT_NEAR(one.y, upperLeft.y, 0.01) << drawing;
    EXPECT_NEAR(other.x, lowerRight.x, 0.01) << drawing;
    EXPECT_NEAR(other.y, lowerRight.y, 0.01) << drawing;
}

// Pages of 200 by 100 points. As it is shown the stamp's upper left corner is always at 10, 5 from
// the upper left corner of the page, and its lower right one at 30, 15.
TEST(PdfStamp, IsUprightAtItsPlaceInEachRotation) {
    ExpectCorners("", {10, 95}, {30, 85});
    ExpectCorners("/Rotate 90", {5, 10}, {15, 30});
    ExpectCorners("/Rotate 180", {190, 5}, {170, 15});
    ExpectCorners("/Rotate 270", {195, 90}, {185, 70});
    ExpectCorners("/Rotate -90", {195, 90}, {185, 70});
    ExpectCorners("/Rotate 450", {5, 10}, {15, 30});
    ExpectCorners("/Rotate 45", {10, 95}, {30, 85});
}

TEST(PdfStamp, CountsFromTheVisibleBox) {
    ExpectCorners("/CropBox [50 20 150 80]", {60, 75}, {80, 65});
    ExpectCorners("/CropBox [150 80 50 20]", {60, 75}, {80, 65});
    ExpectCorners("/CropBox [-100 -100 700 950]", {10, 95}, {30, 85});
    const Corner stamp;
    Stamped(OnePage("/CropBox [50 20 150 80] /Rotate 90").File(), stamp);
    EXPECT_EQ(stamp.asked, (std::vector{PictureSize{120, 200}}));
}

TEST(PdfStamp, KeepsThePageAndDrawsAboveIt) {
    const std::string file =
        Stamped(OnePage("/Resources <</Font <</F1 5 0 R>>>>").File(), Corner());
    const std::string all = Unpacked(file);
    EXPECT_NE(all.find("BT /F1 12 Tf (KEPT) Tj ET"), std::string::npos);
    EXPECT_NE(all.find("/F1"), std::string::npos);
    EXPECT_NE(all.find("/ObStamp1 Do"), std::string::npos);
    EXPECT_NE(all.find("/Artifact BMC"), std::string::npos);
    EXPECT_NE(all.find("/SMask"), std::string::npos);
    EXPECT_NE(all.find(std::string(40 * 20 * 3, 77)), std::string::npos);
}

TEST(PdfStamp, TakesANameThatThePageHasNotUsed) {
    const std::string drawing = LastDrawing(
        Stamped(OnePage("/Resources <</XObject <</ObStamp1 4 0 R>>>>").File(), Corner()));
    EXPECT_NE(drawing.find("/ObStamp2 Do"), std::string::npos);
}

// Pages that share contents and resources each get one stamp, and the file one picture a size.
TEST(PdfStamp, IsOnEachPageOnceAndInTheFileOnce) {
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R>>");
    pdf.Add("<</Type /Pages /Kids [3 0 R 4 0 R 5 0 R] /Count 3 /MediaBox [0 0 200 100]"
            " /Resources 6 0 R>>");
    for (const char* page : {"", "/Rotate 180", "/MediaBox [0 0 400 400]"})
        pdf.Add(std::string("<</Type /Page /Parent 2 0 R /Contents 7 0 R ") + page + ">>");
    pdf.Add("<</XObject 8 0 R>>");
    pdf.AddStream("", "KEPT");
    pdf.Add("<</Other 7 0 R>>");
    const Corner stamp;
    const std::string file = Stamped(pdf.File(), stamp);
    EXPECT_EQ(stamp.asked, (std::vector{PictureSize{400, 200}, PictureSize{800, 800}}));
    for (std::size_t page = 0; page < 3; ++page) {
        EXPECT_NE(LastDrawing(file, page).find("/ObStamp1 Do"), std::string::npos);
    }
    const std::string all = Unpacked(file);
    std::size_t pictures = 0;
    for (auto at = all.find("/SMask"); at != all.npos; at = all.find("/SMask", at + 1)) ++pictures;
    EXPECT_EQ(pictures, 2u);
}

TEST(PdfStamp, IsSharedByPagesOfNearlyOneSize) {
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R>>");
    pdf.Add("<</Type /Pages /Kids [3 0 R 4 0 R] /Count 2>>");
    for (const char* box : {"[0 0 595 842]", "[0 0 594.2 841]"})
        pdf.Add(std::string("<</Type /Page /Parent 2 0 R /MediaBox ") + box + ">>");
    const Corner stamp;
    Stamped(pdf.File(), stamp);
    EXPECT_EQ(stamp.asked, (std::vector{PictureSize{1184, 1680}}));
}

TEST(PdfStamp, IsTheSameForTheSameFile) {
    const std::string file = OnePage().File();
    EXPECT_EQ(Stamped(file, Corner()), Stamped(file, Corner()));
}

TEST(PdfStamp, LeavesTinyPagesAsTheyAre) {
    const TextStamp text(L"Draft", {WatermarkPlace::Centre, 50}, Letters::Black);
    const StampedPdf tiny = StampPdf(BytesOf(OnePage("/CropBox [0 0 5 5]").File()), text, {});
    EXPECT_EQ(tiny.outcome, CleanOutcome::NothingFound);
    EXPECT_TRUE(tiny.bytes.empty());
    const std::string shown = Stamped(OnePage().File(), text);
    EXPECT_NE(Unpacked(shown).find("ObStamp"), std::string::npos);
}

TEST(PdfStamp, IsRefusedWhereItWouldBreakTheFile) {
    EXPECT_EQ(OutcomeOf("%PDF-1.7 and no more"), CleanOutcome::Damaged);
    EXPECT_EQ(OutcomeOf(""), CleanOutcome::Damaged);
    const std::string whole = OnePage().File();
    EXPECT_EQ(OutcomeOf(whole.substr(0, whole.size() / 2)), CleanOutcome::Damaged);
    PdfBuilder signedPdf = OnePage("", "/AcroForm <</SigFlags 3 /Fields [5 0 R]>>");
    signedPdf.Add("<</FT /Sig /T (s) /V 6 0 R>>");
    signedPdf.Add("<</Type /Sig /ByteRange [0 1 2 3] /Contents <00>>>");
    EXPECT_EQ(OutcomeOf(signedPdf.File()), CleanOutcome::Signed);
    const PdfBuilder direct =
        OnePage("", "/AcroForm <</Fields [<</FT /Sig /T (s) /V <</Type /Sig /Contents <00>>>>>]>>");
    EXPECT_EQ(OutcomeOf(direct.File()), CleanOutcome::Signed);
}

TEST(PdfStamp, EndsWhenItIsCancelled) {
    const std::string file = OnePage().File();
    const std::atomic<bool> cancelled = true;
    PictureControl control;
    control.cancelled = &cancelled;
    try {
        StampPdf(BytesOf(file), Corner(), control);
        ADD_FAILURE() << "the work went on";
    } catch (const PictureFailure& failure) {
        EXPECT_EQ(failure.outcome, PictureOutcome::Cancelled);
    }
}

TEST(PdfStampRefusals, ATreeOfPagesThatIsAsDeepAsTheFileIsLongIsDamaged) {
    constexpr int kLevels = 100'000;
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R>>");
    for (int node = 2; node < kLevels; ++node) {
        pdf.Add("<</Type /Pages /Kids [" + std::to_string(node + 1) + " 0 R] /Count 1>>");
    }
    pdf.Add("<</Type /Page /MediaBox [0 0 200 100]>>");
    EXPECT_EQ(OutcomeOf(pdf.File()), CleanOutcome::Damaged);
}

TEST(PdfStampRefusals, ContentsThatAreABombAreTooLarge) {
    const std::string bomb = Bomb(kPackedPage, documents::kMostDecoded / kMegabyte);
    EXPECT_EQ(OutcomeOf(BombOfContents(bomb)), CleanOutcome::TooLarge);
    EXPECT_EQ(OutcomeOf(BombOfPackedObjects(bomb)), CleanOutcome::TooLarge);
}

// The page names one stream many times.
TEST(PdfStampRefusals, ContentsThatAreABombTogetherAreTooLarge) {
    std::string contents;
    for (int part = 0; part < 129; ++part) contents += "4 0 R ";
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R>>");
    pdf.Add("<</Type /Pages /Kids [3 0 R] /Count 1>>");
    pdf.Add("<</Type /Page /Parent 2 0 R /MediaBox [0 0 200 100] /Contents [" + contents + "]>>");
    pdf.AddStream("/Filter /FlateDecode", Bomb("", 1));
    EXPECT_EQ(OutcomeOf(pdf.File()), CleanOutcome::TooLarge);
}

TEST(PdfStamp, IsOnceOnAPageThatIsTwiceInTheTree) {
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R>>");
    pdf.Add("<</Type /Pages /Kids [3 0 R 3 0 R] /Count 2>>");
    pdf.Add("<</Type /Page /Parent 2 0 R /MediaBox [0 0 200 100]>>");
    const std::string unpacked = Unpacked(Stamped(pdf.File(), Corner()));
    const auto first = unpacked.find(" Do Q EMC");
    ASSERT_NE(first, std::string::npos);
    EXPECT_EQ(unpacked.find(" Do Q EMC", first + 1), std::string::npos);
}

} // namespace
