// PDFs of other programs without what differs each time such a program makes them.
#include "services/transforms/documents/PdfDates.h"

#include <gtest/gtest.h>

#include <string>

#include "services/transforms/documents/PdfFile.h"
#include "services/transforms/documents/PdfStreamSizes.h"
#include "tests/unit/services/transforms/SamplePhoto.h"
#include "tests/unit/services/transforms/documents/BombSamples.h"
#include "tests/unit/services/transforms/documents/EncryptedSamples.h"
#include "tests/unit/services/transforms/documents/PdfBuilder.h"

using namespace samples;
using transforms::documents::RemovePdfDates;

namespace {

struct Dateless {
    CleanOutcome outcome;
    std::string file;
};

Dateless WithoutDates(const std::string& file) {
    const auto analysis = RemovePdfDates(BytesOf(file), {});
    return {transforms::personal::OutcomeOf(analysis), SampleOf(analysis.parts.Join())};
}

// What a program makes of one document at a time of day.
std::string MadeAt(const std::string& time, const std::string& properties = {}) {
    PdfBuilder pdf = OnePage({}, properties.empty() ? "" : "/Metadata 6 0 R");
    pdf.Add("<</Title (KEPT) /Producer (A suite) /CreationDate (D:" + time +
            ") /ModDate (D:" + time + ")>>");
    if (!properties.empty()) pdf.AddStream("/Type /Metadata /Subtype /XML", properties + time);
    const std::string id = "<" + time + "00112233445566>";
    return pdf.File("/Info 5 0 R /ID [" + id + id + "] /DocChecksum /" + time);
}

constexpr char kNoon[] = "20261122120000";
constexpr char kLater[] = "20261122120001";

TEST(PdfDates, GoSoThatEqualDocumentsGiveEqualFiles) {
    const Dateless made = WithoutDates(MadeAt(kNoon));
    EXPECT_EQ(made.outcome, CleanOutcome::Cleaned);
    EXPECT_NE(MadeAt(kNoon), MadeAt(kLater));
    EXPECT_EQ(made.file, WithoutDates(MadeAt(kLater)).file);
    EXPECT_EQ(made.file.find("2026"), std::string::npos);
    for (const char* kept : {"(KEPT)", "(A suite)", "(KEPT) Tj", "/ID ["}) {
        EXPECT_NE(made.file.find(kept), std::string::npos) << kept;
    }
}

TEST(PdfDates, LeaveTheIdentifierToTheContent) {
    const std::string one = WithoutDates(MadeAt(kNoon)).file;
    std::string other = MadeAt(kNoon);
    other.replace(other.find("(A suite)"), 9, "(B suite)");
    EXPECT_NE(one.substr(one.rfind("/ID")), WithoutDates(other).file.substr(one.rfind("/ID")));
}

TEST(PdfDates, GoFromPropertiesUnlessTheseNameAStandard) {
    EXPECT_EQ(WithoutDates(MadeAt(kNoon, "<x:xmpmeta/>")).file,
              WithoutDates(MadeAt(kLater, "<x:xmpmeta/>")).file);
    for (const char* standard :
         {"<pdfaid:part>2</pdfaid:part>", "<pdfuaid:part>1</pdfuaid:part>"}) {
        const Dateless made = WithoutDates(MadeAt(kNoon, standard));
        EXPECT_EQ(made.outcome, CleanOutcome::Cleaned);
        EXPECT_NE(made.file.find(std::string(standard) + kNoon), std::string::npos);
    }
}

TEST(PdfDates, AreNotLookedForInPropertiesThatAreABomb) {
    PdfBuilder pdf = OnePage({}, "/Metadata 5 0 R");
    pdf.AddStream("/Type /Metadata /Subtype /XML /Filter /FlateDecode",
                  Bomb("<x/>", transforms::documents::kMostDecoded / kMegabyte));
    const Dateless made = WithoutDates(pdf.File());
    EXPECT_EQ(made.outcome, CleanOutcome::TooLarge);
    EXPECT_TRUE(made.file.empty());
}

TEST(PdfDates, StayInAnEncryptedFile) {
    for (const char* password : {"", "secret"}) {
        const Dateless made = WithoutDates(Encrypted(MadeAt(kNoon), {.user = password}));
        EXPECT_EQ(made.outcome, CleanOutcome::Encrypted) << password;
        EXPECT_TRUE(made.file.empty()) << password;
    }
}

// What the pages show and lead to, and the tags, are the same objects as before.
TEST(PdfDates, LeavePagesLinksBookmarksAndTags) {
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R /Outlines 6 0 R /StructTreeRoot 8 0 R /MarkInfo "
            "<</Marked true>> /Lang (en)>>");
    pdf.Add("<</Type /Pages /Kids [3 0 R 4 0 R] /Count 2 /MediaBox [0 0 9 9]>>");
    pdf.Add("<</Type /Page /Parent 2 0 R /Annots [5 0 R] /StructParents 0>>");
    pdf.Add("<</Type /Page /Parent 2 0 R>>");
    pdf.Add("<</Type /Annot /Subtype /Link /Rect [0 0 9 9] /Dest [4 0 R /Fit]>>");
    pdf.Add("<</First 7 0 R /Last 7 0 R /Count 1>>");
    pdf.Add("<</Title (MARK) /Parent 6 0 R /Dest [4 0 R /Fit]>>");
    pdf.Add("<</Type /StructTreeRoot /K 9 0 R /ParentTree <</Nums [0 [9 0 R]]>>>>");
    pdf.Add("<</Type /StructElem /S /P /P 8 0 R /Pg 3 0 R /K 0>>");
    pdf.Add("<</CreationDate (D:20261122120000)>>");
    const Dateless made = WithoutDates(pdf.File("/Info 10 0 R"));
    ASSERT_EQ(made.outcome, CleanOutcome::Cleaned);
    QPDF read;
    read.processMemoryFile("made", made.file.data(), made.file.size());
    const auto pages = read.getAllPages();
    ASSERT_EQ(pages.size(), 2u);
    auto catalog = read.getRoot();
    auto link = QPDFObjectHandle(pages[0]).getKey("/Annots").getArrayItem(0).getKey("/Dest");
    EXPECT_TRUE(link.getArrayItem(0).isSameObjectAs(pages[1]));
    auto mark = catalog.getKey("/Outlines").getKey("/First");
    EXPECT_EQ(mark.getKey("/Title").getStringValue(), "MARK");
    EXPECT_TRUE(mark.getKey("/Dest").getArrayItem(0).isSameObjectAs(pages[1]));
    auto tag = catalog.getKey("/StructTreeRoot").getKey("/K");
    EXPECT_EQ(tag.getKey("/S").getName(), "/P");
    EXPECT_TRUE(tag.getKey("/Pg").isSameObjectAs(pages[0]));
    EXPECT_TRUE(catalog.getKey("/MarkInfo").getKey("/Marked").getBoolValue());
    EXPECT_FALSE(read.getTrailer().getKey("/Info").hasKey("/CreationDate"));
}

TEST(PdfDates, StayAwayTheSecondTime) {
    const std::string once = WithoutDates(MadeAt(kNoon)).file;
    EXPECT_EQ(WithoutDates(once).file, once);
}

TEST(PdfDates, AreNotRemovedFromADamagedFile) {
    EXPECT_EQ(WithoutDates("%PDF-1.6\n% nothing\n%%EOF\n").outcome, CleanOutcome::Damaged);
    EXPECT_EQ(WithoutDates("").outcome, CleanOutcome::Damaged);
    const std::string file = MadeAt(kNoon);
    for (std::size_t size = 0; size < file.size() - 10; size += 11) {
        const Dateless cut = WithoutDates(file.substr(0, size));
        EXPECT_EQ(cut.outcome, CleanOutcome::Damaged) << size;
        EXPECT_TRUE(cut.file.empty());
    }
}

} // namespace
