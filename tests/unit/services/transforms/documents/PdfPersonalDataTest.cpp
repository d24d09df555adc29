// PDFs with a canary in every place from which personal data goes, searched object by object with
// every stream unpacked; what has to stay; and files that can't be cleaned.
#include <gtest/gtest.h>

#include <string>

#include <qpdf/QPDFWriter.hh>

#include "services/transforms/documents/PdfFile.h"
#include "services/transforms/documents/PdfStreamSizes.h"
#include "tests/unit/services/transforms/documents/BombSamples.h"
#include "tests/unit/services/transforms/documents/DocumentSamples.h"
#include "tests/unit/services/transforms/documents/LargeSamples.h"
#include "tests/unit/services/transforms/documents/PdfSamples.h"

using namespace samples;

namespace {

void ExpectRemoved(const std::string& file, FindingKind kind) {
    const CleanedDocument cleaned = CheckDocument(file);
    ASSERT_EQ(cleaned.outcome, CleanOutcome::Cleaned);
    EXPECT_TRUE(Has(cleaned.removed, kind));
    EXPECT_NE(Unpacked(file).find(kCanary), std::string::npos);
    const std::string unpacked = Unpacked(cleaned.file);
    EXPECT_EQ(unpacked.find(kCanary), std::string::npos) << unpacked;
    EXPECT_EQ(cleaned.file.find(kCanary), std::string::npos);
    EXPECT_NE(unpacked.find(kKept), std::string::npos);
}

std::string WithAnnotation(const std::string& keys) {
    return OnePage("/Annots [<</Type /Annot /Rect [0 0 9 9] " + keys + ">>]").File();
}

TEST(PdfPersonalData, RemovesTheDocumentInformation) {
    auto pdf = OnePage();
    pdf.Add("<</Author (CANARY) /Title (CANARY) /Creator (CANARY) /Producer (CANARY) "
            "/CreationDate (D:20260102030405Z) /CANARY (x) /Keywords (CANARY)>>");
    const std::string file = pdf.File("/Info 5 0 R");
    ExpectRemoved(file, FindingKind::Person);
    ExpectRemoved(file, FindingKind::Time);
    ExpectRemoved(file, FindingKind::Software);
    ExpectRemoved(file, FindingKind::Description);
    ExpectRemoved(file, FindingKind::PrivateData);
}

TEST(PdfPersonalData, RemovesOtherKeysOfTheTrailer) {
    ExpectRemoved(OnePage().File("/DocChecksum /CANARY"), FindingKind::PrivateData);
}

TEST(PdfPersonalData, MakesTheIdentifierOfTheContent) {
    const std::string file = OnePage().File("/ID [(CANARYCANARYCANA) (CANARYCANARYCANA)]");
    ExpectRemoved(file, FindingKind::DocumentId);
    const std::string other = OnePage().File("/ID [(1234567890123456) (1234567890123456)]");
    EXPECT_EQ(CleanDocument(file).file, CleanDocument(other).file);
}

TEST(PdfPersonalData, RemovesXmpOfEveryObject) {
    auto pdf = OnePage("/Metadata 5 0 R /Resources <</XObject <</P 6 0 R>>>>", "/Metadata 5 0 R");
    pdf.AddStream("/Type /Metadata /Subtype /XML", "<x>CANARY</x>");
    pdf.AddStream("/Type /XObject /Subtype /Form /BBox [0 0 1 1] /Metadata 7 0 R", "KEPT");
    pdf.AddStream("", "CANARY");
    const CleanedDocument cleaned = CleanDocument(pdf.File());
    EXPECT_EQ(cleaned.removed[0], (Finding{FindingKind::Xmp, 3}));
    ExpectRemoved(pdf.File(), FindingKind::Xmp);
}

TEST(PdfPersonalData, KeepsADrawnThingThatIsCalledMetadata) {
    auto pdf = OnePage("/Resources <</XObject <</Metadata 5 0 R>>>>");
    pdf.AddStream("/Type /XObject /Subtype /Form /BBox [0 0 1 1]", "KEPT FORM");
    EXPECT_NE(Unpacked(CheckDocument(pdf.File()).file).find("KEPT FORM"), std::string::npos);
}

TEST(PdfPersonalData, RemovesPrivateDataOfPrograms) {
    ExpectRemoved(OnePage("/PieceInfo <</App <</Private (CANARY)>>>>").File(),
                  FindingKind::PrivateData);
    ExpectRemoved(OnePage("/PTEX.FileName (CANARY)").File(), FindingKind::PrivateData);
    ExpectRemoved(OnePage("/AAPL:AKExtras (CANARY)").File(), FindingKind::PrivateData);
    ExpectRemoved(OnePage("", "/SpiderInfo <</C [(CANARY)]>>").File(), FindingKind::PrivateData);
}

TEST(PdfPersonalData, RemovesThumbnailsAndTimesOfPages) {
    auto pdf = OnePage("/Thumb 5 0 R /LastModified (D:CANARY)");
    pdf.AddStream("/Width 1 /Height 1 /ColorSpace /DeviceGray /BitsPerComponent 8", "CANARY");
    ExpectRemoved(pdf.File(), FindingKind::Thumbnail);
    ExpectRemoved(pdf.File(), FindingKind::Time);
}

TEST(PdfPersonalData, RemovesWhoWroteACommentAndWhen) {
    const std::string file =
        WithAnnotation("/Subtype /Text /T (CANARY) /M (CANARY) /CreationDate (CANARY) "
                       "/NM (CANARY) /Contents (KEPT COMMENT)");
    ExpectRemoved(file, FindingKind::Authors);
    const CleanedDocument cleaned = CleanDocument(file);
    EXPECT_NE(Unpacked(cleaned.file).find("KEPT COMMENT"), std::string::npos);
    EXPECT_EQ(cleaned.stays, (std::vector<Finding>{{FindingKind::Comments, 1}}));
}

TEST(PdfPersonalData, KeepsNamesAndValuesOfFormFields) {
    const std::string file = WithAnnotation("/Subtype /Widget /FT /Tx /T (KEPT NAME) "
                                            "/V (KEPT VALUE) /M (CANARY)");
    const CleanedDocument cleaned = CheckDocument(file);
    EXPECT_NE(Unpacked(cleaned.file).find("KEPT NAME"), std::string::npos);
    EXPECT_NE(Unpacked(cleaned.file).find("KEPT VALUE"), std::string::npos);
    EXPECT_EQ(Unpacked(cleaned.file).find(kCanary), std::string::npos);
    EXPECT_TRUE(cleaned.stays.empty());
}

TEST(PdfPersonalData, KeepsLinksAndBookmarks) {
    auto pdf = OnePage("/Annots [<</Type /Annot /Subtype /Link /Rect [0 0 9 9] /A <</S /URI "
                       "/URI (https://example.com/KEPTLINK)>>>>]",
                       "/Outlines 5 0 R");
    pdf.Add("<</Type /Outlines /First 6 0 R /Last 6 0 R /Count 1>>");
    pdf.Add("<</Title (KEPT TITLE) /Parent 5 0 R /Dest [3 0 R /Fit]>>");
    const std::string unpacked = Unpacked(CheckDocument(pdf.File()).file);
    EXPECT_NE(unpacked.find("https://example.com/KEPTLINK"), std::string::npos);
    EXPECT_NE(unpacked.find("KEPT TITLE"), std::string::npos);
}

TEST(PdfPersonalData, CutsPathsOfTheAuthorsComputer) {
    for (const char* action :
         {"/S /GoToR /F (/C/Users/CANARY/Other.pdf)", "/S /URI /URI (file:///C:/CANARY/Other.pdf)",
          "/S /Launch /F <</Type /Filespec /F (C:\\\\CANARY\\\\Other.pdf) "
          "/UF (C:\\\\CANARY\\\\Other.pdf)>>",
          "/S /Launch /Win <</F (\\\\\\\\CANARY\\\\share\\\\Other.pdf) /D (C:\\\\CANARY)>>"}) {
        const std::string file =
            WithAnnotation("/Subtype /Link /A <<" + std::string(action) + ">>");
        ExpectRemoved(file, FindingKind::LocalPath);
        EXPECT_NE(Unpacked(CleanDocument(file).file).find("Other.pdf"), std::string::npos);
    }
}

TEST(PdfPersonalData, RemovesTimesOfEmbeddedFilesAndReportsThem) {
    auto pdf = OnePage("", "/Names <</EmbeddedFiles <</Names [(a) 5 0 R]>>>>");
    pdf.Add("<</Type /Filespec /F (KEPT.txt) /Unix (CANARY) /EF <</F 6 0 R>>>>");
    pdf.AddStream("/Type /EmbeddedFile /Params <</Size 4 /ModDate (CANARY) "
                  "/CreationDate (CANARY) /Mac <</Creator (CANARY)>>>>",
                  "KEPT FILE");
    ExpectRemoved(pdf.File(), FindingKind::Time);
    const CleanedDocument cleaned = CleanDocument(pdf.File());
    EXPECT_EQ(cleaned.stays, (std::vector<Finding>{{FindingKind::EmbeddedFiles, 1}}));
    EXPECT_NE(Unpacked(cleaned.file).find("KEPT FILE"), std::string::npos);
}

TEST(PdfPersonalData, CleansJpegPicturesInside) {
    auto pdf = OnePage("/Resources <</XObject <</I 5 0 R>>>>");
    pdf.AddStream("/Type /XObject /Subtype /Image /Width 8 /Height 8 /ColorSpace /DeviceGray "
                  "/BitsPerComponent 8 /Filter /DCTDecode",
                  Photo());
    ExpectRemoved(pdf.File(), FindingKind::Position);
    const auto photo = transforms::CleanFile(BytesOf(Photo()));
    EXPECT_NE(CleanDocument(pdf.File()).file.find(SampleOf(photo.bytes)), std::string::npos);
}

TEST(PdfPersonalData, CleansJpegPicturesUnderAnotherCoding) {
    std::string hex;
    for (const char c : Photo()) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(c));
        hex += digits;
    }
    auto pdf = OnePage("/Resources <</XObject <</I 5 0 R>>>>");
    pdf.AddStream("/Type /XObject /Subtype /Image /Width 8 /Height 8 /ColorSpace /DeviceGray "
                  "/BitsPerComponent 8 /Filter [/ASCIIHexDecode /DCTDecode]",
                  hex + ">");
    const CleanedDocument cleaned = CheckDocument(pdf.File());
    EXPECT_TRUE(Has(cleaned.removed, FindingKind::Position));
    const auto photo = transforms::CleanFile(BytesOf(Photo()));
    EXPECT_NE(cleaned.file.find(SampleOf(photo.bytes)), std::string::npos);
}

TEST(PdfPersonalData, ReportsAPictureThatCantBeCleaned) {
    auto pdf = OnePage("/Resources <</XObject <</I 5 0 R>>>>");
    pdf.AddStream("/Type /XObject /Subtype /Image /Width 8 /Height 8 /Filter /DCTDecode", "?");
    EXPECT_EQ(CheckDocument(pdf.File()).stays,
              (std::vector<Finding>{{FindingKind::EmbeddedFiles, 1}}));
}

TEST(PdfPersonalData, RemovesOlderVersionsOfADocument) {
    const std::string old = OnePage("/Lang (CANARY)").File();
    const std::string object = "3 0 obj\n<</Type /Page /Parent 2 0 R /MediaBox [0 0 200 100] "
                               "/Contents 4 0 R>>\nendobj\n";
    char row[32];
    std::snprintf(row, sizeof row, "%010u 00000 n \n", static_cast<unsigned>(old.size()));
    const std::string previous = std::to_string(old.rfind("xref\n0 5"));
    const std::string file =
        old + object + "xref\n3 1\n" + row + "trailer\n<</Size 5 /Root 1 0 R /Prev " + previous +
        ">>\nstartxref\n" + std::to_string(old.size() + object.size()) + "\n%%EOF\n";
    const CleanedDocument cleaned = CheckDocument(file);
    ASSERT_EQ(cleaned.outcome, CleanOutcome::Cleaned);
    EXPECT_TRUE(Has(cleaned.removed, FindingKind::OldVersions));
    EXPECT_EQ(cleaned.file.find(kCanary), std::string::npos);
    EXPECT_NE(Unpacked(cleaned.file).find(kKept), std::string::npos);
}

TEST(PdfPersonalData, RemovesObjectsThatNothingRefersTo) {
    auto pdf = OnePage();
    pdf.Add("(CANARY)");
    ExpectRemoved(pdf.File(), FindingKind::FileStructure);
}

TEST(PdfPersonalData, RemovesBytesBetweenAndAroundTheObjects) {
    auto pdf = OnePage();
    const CleanedDocument cleaned = CheckDocument(pdf.File() + "CANARY after the end");
    EXPECT_EQ(cleaned.outcome, CleanOutcome::Cleaned);
    EXPECT_EQ(cleaned.file.find(kCanary), std::string::npos);
}

TEST(PdfPersonalData, CleansObjectsInsideObjectStreams) {
    const std::string plain = OnePage("/PieceInfo <</A (CANARY)>>").File();
    QPDF pdf;
    pdf.processMemoryFile("plain", plain.data(), plain.size());
    QPDFWriter writer(pdf);
    writer.setOutputMemory();
    writer.setObjectStreamMode(qpdf_o_generate);
    writer.setStaticID(true);
    writer.write();
    const auto written = writer.getBufferSharedPointer();
    const std::string file(reinterpret_cast<const char*>(written->getBuffer()), written->getSize());
    EXPECT_EQ(file.find(kCanary), std::string::npos);
    ExpectRemoved(file, FindingKind::PrivateData);
}

TEST(PdfPersonalData, LeavesAFileThatWasCleanedAsItIs) {
    const CleanedDocument once = CleanDocument(OnePage().File());
    EXPECT_EQ(CleanDocument(once.file).outcome, CleanOutcome::NothingFound);
    EXPECT_EQ(CleanDocument(once.file).file, once.file);
}

TEST(PdfPersonalData, KeepsEveryPageOfFiveThousand) {
    const CleanedDocument cleaned = CleanDocument(ManyPages(5000));
    ASSERT_EQ(cleaned.outcome, CleanOutcome::Cleaned);
    EXPECT_EQ(cleaned.removed[0], (Finding{FindingKind::PrivateData, 5000}));
    QPDF read;
    read.processMemoryFile("cleaned", cleaned.file.data(), cleaned.file.size());
    EXPECT_EQ(read.getAllPages().size(), 5000u);
}

TEST(PdfRefusals, SignedFilesAreLeftAlone) {
    const std::string signature = "<</Type /Sig /Filter /Adobe.PPKLite /Contents <00> "
                                  "/ByteRange [0 1 2 3]>>";
    EXPECT_EQ(
        CheckDocument(WithAnnotation("/Subtype /Widget /FT /Sig /T (s) /V " + signature)).outcome,
        CleanOutcome::Signed);
    EXPECT_EQ(CheckDocument(OnePage("", "/Perms <</DocMDP " + signature + ">>").File()).outcome,
              CleanOutcome::Signed);
}

TEST(PdfRefusals, AnEmptySignatureFieldIsNoSignature) {
    EXPECT_EQ(CheckDocument(WithAnnotation("/Subtype /Widget /FT /Sig /T (s)")).outcome,
              CleanOutcome::Cleaned);
}

TEST(PdfRefusals, EveryFileThatIsCutOffIsDamaged) {
    const std::string file = OnePage().File();
    for (std::size_t size = 5; size + 8 < file.size(); ++size) {
        EXPECT_EQ(CleanDocument(file.substr(0, size)).outcome, CleanOutcome::Damaged) << size;
    }
}

TEST(PdfRefusals, ABrokenTableOfObjectsIsDamaged) {
    std::string file = OnePage().File();
    file.replace(file.find("startxref\n") + 10, 3, "012");
    EXPECT_EQ(CheckDocument(file).outcome, CleanOutcome::Damaged);
    file = OnePage().File();
    file.replace(file.rfind("0000000"), 10, "0000000007");
    EXPECT_EQ(CheckDocument(file).outcome, CleanOutcome::Damaged);
}

TEST(PdfRefusals, AFileWithoutPagesIsDamaged) {
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R>>");
    pdf.Add("<</Type /Pages /Kids [] /Count 0>>");
    EXPECT_EQ(CheckDocument(pdf.File()).outcome, CleanOutcome::Damaged);
}

TEST(PdfRefusals, PagesThatFormALoopEnd) {
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R>>");
    pdf.Add("<</Type /Pages /Kids [2 0 R 3 0 R] /Count 1>>");
    pdf.Add("<</Type /Page /Parent 2 0 R /MediaBox [0 0 9 9]>>");
    EXPECT_EQ(CheckDocument(pdf.File()).outcome, CleanOutcome::Damaged);
}

TEST(PdfRefusals, ObjectsThatAreNestedWithoutEndAreDamaged) {
    const std::string deep(100000, '[');
    EXPECT_EQ(CheckDocument(OnePage("/A " + deep).File()).outcome, CleanOutcome::Damaged);
}

// Each level is a node of the tree.
std::string DeepTree(const std::string& root) {
    constexpr int kLevels = 100'000;
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R>>");
    pdf.Add(root);
    pdf.Add("<</Type /Page /Parent 2 0 R /MediaBox [0 0 9 9]>>");
    for (int node = 4; node < kLevels; ++node) {
        pdf.Add("<</Type /Pages /Kids [" + std::to_string(node + 1) + " 0 R] /Count 1>>");
    }
    pdf.Add("<</Type /Page /MediaBox [0 0 9 9]>>");
    return pdf.File();
}

TEST(PdfRefusals, ATreeOfPagesThatIsAsDeepAsTheFileIsLongIsDamaged) {
    EXPECT_EQ(CheckDocument(DeepTree("<</Type /Pages /Kids [4 0 R] /Count 1>>")).outcome,
              CleanOutcome::Damaged);
}

// The catalog's node names one above it.
TEST(PdfRefusals, ADeepTreeThatNoPageIsInIsNotWalked) {
    const auto cleaned =
        CleanDocument(DeepTree("<</Type /Pages /Parent 4 0 R /Kids [3 0 R] /Count 1>>"));
    EXPECT_EQ(cleaned.outcome, CleanOutcome::Cleaned);
}

TEST(PdfBombs, WhatIsReadWholeIsTooLarge) {
    const std::string bomb = Bomb(kPackedPage, transforms::documents::kMostDecoded / kMegabyte);
    EXPECT_LT(bomb.size(), kMegabyte);
    EXPECT_EQ(CleanDocument(BombOfPackedObjects(bomb)).outcome, CleanOutcome::TooLarge);
    EXPECT_EQ(CleanDocument(BombOfPicture(bomb)).outcome, CleanOutcome::TooLarge);
    EXPECT_EQ(CleanDocument(BombOfContents(bomb)).outcome, CleanOutcome::Cleaned);
}

// A stream can't be packed. Steps are counted while anything is decoded.
TEST(PdfBombs, AStreamInsideAPackedStreamIsNotUnpacked) {
    class Count final : public transforms::PictureSteps {
    public:
        void Step() noexcept override { ++steps; }
        int steps = 0;
    } count;
    const std::string bomb = Bomb("4 0 <<>>", transforms::documents::kMostDecoded / kMegabyte);
    const std::string file = PackedInABomb(bomb);
    QPDF pdf;
    try {
        transforms::documents::OpenPdf(pdf, BytesOf(file), {&count, {}});
        ADD_FAILURE() << "opened";
    } catch (const transforms::documents::PdfRefusal& refusal) {
        EXPECT_EQ(refusal.outcome, CleanOutcome::Damaged);
    }
    EXPECT_LT(count.steps, 100);
    EXPECT_EQ(CleanDocument(file).outcome, CleanOutcome::Damaged);
}

// The library asks for these before anybody can look at their size; the work process's limit is
// what ends one that is larger.
TEST(PdfBombs, WhatTheKeysAreMadeOfIsNotCleaned) {
    const std::string bomb = Bomb(kPackedPage, transforms::documents::kMostDecoded / kMegabyte);
    const std::string file =
        PackedPage(bomb, "/Encrypt 3 0 R", [](const std::string& table) { return table; });
    EXPECT_EQ(CleanDocument(file).outcome, CleanOutcome::OtherCipher);
}

TEST(PdfBombs, FilesOfTheSameKindUpToTheLimitAreCleaned) {
    const std::string most = Bomb(kPackedPage, 1);
    EXPECT_EQ(CheckDocument(BombOfPackedObjects(most)).outcome, CleanOutcome::Cleaned);
    EXPECT_EQ(CheckDocument(BombOfPicture(most)).outcome, CleanOutcome::Cleaned);
    EXPECT_EQ(CheckDocument(PackedPageWithCodedTable(1)).outcome, CleanOutcome::Cleaned);
}

TEST(PdfMutations, FlippedBitsGiveACleanFileOrARefusal) {
    auto pdf = OnePage("/PieceInfo <</A (x)>> /Resources <</XObject <</I 5 0 R>>>>");
    pdf.AddStream("/Type /XObject /Subtype /Image /Width 8 /Height 8 /Filter /DCTDecode", Photo());
    const std::string file = pdf.File("/Info <</Author (x)>>");
    std::mt19937 random(5);
    for (int round = 0; round < 600; ++round) {
        std::string changed = file;
        changed[random() % changed.size()] ^= static_cast<char>(1u << random() % 8);
        CheckDocument(changed);
    }
}

} // namespace
