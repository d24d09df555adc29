// PDFs that become one: order, bookmarks, links, form fields, layers; parts that are refused.
#include "services/transforms/documents/PdfCombine.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include <qpdf/QPDFAcroFormDocumentHelper.hh>
#include <qpdf/QPDFOutlineDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include "tests/unit/services/transforms/documents/DocumentSamples.h"
#include "tests/unit/services/transforms/documents/PdfSamples.h"

using namespace samples;
using transforms::documents::CombinedPdf;
using transforms::documents::CombinePdfs;
using transforms::documents::PdfPart;

namespace {

// Pages of the sizes 100 + first, 101 + first and so on, so that each can be known again.
std::string Pages(int count, int first, const std::string& keysOfFirst = {},
                  const std::string& catalog = {}) {
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R " + catalog + ">>");
    std::string kids;
    for (int page = 0; page < count; ++page) kids += std::to_string(page + 3) + " 0 R ";
    pdf.Add("<</Type /Pages /Kids [" + kids + "] /Count " + std::to_string(count) + ">>");
    for (int page = 0; page < count; ++page) {
        pdf.Add("<</Type /Page /Parent 2 0 R /MediaBox [0 0 " + std::to_string(100 + first + page) +
                " 50] " + (page ? "" : keysOfFirst) + ">>");
    }
    return pdf.File();
}

struct Part {
    std::string title;
    std::string file;
};

CombinedPdf Combined(const std::vector<Part>& parts) {
    std::vector<PdfPart> list;
    for (const Part& part : parts) list.push_back({part.title, BytesOf(part.file)});
    return CombinePdfs(list);
}

class CombinedFile {
public:
    explicit CombinedFile(const std::vector<Part>& parts) {
        const CombinedPdf combined = Combined(parts);
        EXPECT_EQ(combined.outcome, CleanOutcome::Cleaned);
        file_ = SampleOf(combined.bytes);
        pdf_.setSuppressWarnings(true);
        pdf_.setAttemptRecovery(false);
        pdf_.processMemoryFile("combined", file_.data(), file_.size());
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
    QPDFObjectHandle Annotation(std::size_t page) {
        return Page(page).getKey("/Annots").getArrayItem(0);
    }
    QPDF& Pdf() { return pdf_; }

private:
    std::string file_;
    QPDF pdf_;
};

std::string Link(const std::string& keys) {
    return "/Annots [<</Type /Annot /Subtype /Link /Rect [0 0 9 9] " + keys + ">>]";
}

TEST(PdfCombine, PutsThePagesInTheOrderOfTheParts) {
    CombinedFile file({{"a", Pages(2, 0)}, {"b", Pages(1, 20)}, {"c", Pages(3, 40)}});
    EXPECT_EQ(file.Sizes(), (std::vector<int>{100, 101, 120, 140, 141, 142}));
}

TEST(PdfCombine, GivesEachPartABookmarkWithItsOwnBelow) {
    PdfBuilder pdf = OnePage("", "/Outlines 5 0 R");
    pdf.Add("<</Type /Outlines /First 6 0 R /Last 7 0 R /Count 2>>");
    pdf.Add("<</Title (One) /Parent 5 0 R /Next 7 0 R /Dest [3 0 R /Fit]>>");
    pdf.Add("<</Title (Two) /Parent 5 0 R /Prev 6 0 R /A <</S /GoTo /D [3 0 R /Fit]>>>>");
    CombinedFile file({{"First", Pages(2, 0)},
                       {"Gr\xC3\xBC\xC3\x9F"
                        "e",
                        pdf.File()}});
    auto bookmarks = QPDFOutlineDocumentHelper(file.Pdf()).getTopLevelOutlines();
    ASSERT_EQ(bookmarks.size(), 2u);
    EXPECT_EQ(bookmarks[0].getTitle(), "First");
    EXPECT_EQ(CombinedFile::SizeOf(bookmarks[0].getDestPage()), 100);
    EXPECT_EQ(bookmarks[1].getTitle(), "Gr\xC3\xBC\xC3\x9F"
                                       "e");
    auto below = bookmarks[1].getKids();
    ASSERT_EQ(below.size(), 2u);
    EXPECT_EQ(below[0].getTitle(), "One");
    EXPECT_EQ(below[1].getTitle(), "Two");
    for (auto& bookmark : below) EXPECT_EQ(CombinedFile::SizeOf(bookmark.getDestPage()), 200);
}

TEST(PdfCombine, LetsLinksLeadToTheSamePages) {
    for (const char* link : {"/Dest [5 0 R /Fit]", "/A <</S /GoTo /D [5 0 R /XYZ 1 2 3]>>",
                             "/Dest /there", "/Dest (here)", "/A <</S /GoTo /D (here)>>"}) {
        const std::string part =
            Pages(3, 20, Link(link),
                  "/Dests <</there [5 0 R /Fit]>> /Names <</Dests <</Names [(here) "
                  "<</D [5 0 R /Fit]>>]>>>>");
        CombinedFile file({{"a", Pages(2, 0)}, {"b", part}, {"c", part}});
        for (const std::size_t page : {2u, 5u}) {
            auto annotation = file.Annotation(page);
            auto place = annotation.hasKey("/Dest") ? annotation.getKey("/Dest")
                                                    : annotation.getKey("/A").getKey("/D");
            ASSERT_TRUE(place.isArray()) << link;
            EXPECT_TRUE(place.getArrayItem(0).isSameObjectAs(file.Pdf().getAllPages()[page + 2]))
                << link;
        }
    }
}

TEST(PdfCombine, KeepsLinksToTheWeb) {
    CombinedFile file({{"a", Pages(1, 0, Link("/A <</S /URI /URI (https://example.com)>>"))}});
    EXPECT_EQ(file.Annotation(0).getKey("/A").getKey("/URI").getStringValue(),
              "https://example.com");
}

TEST(PdfCombine, RenamesFormFieldsWhoseNameIsTaken) {
    const auto form = [](const std::string& value) {
        PdfBuilder pdf = OnePage("/Annots [5 0 R]", "/AcroForm <</Fields [5 0 R] /DA (/F 1 Tf)>>");
        pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /FT /Tx /T (name) /V (" + value +
                ")>>");
        return pdf.File();
    };
    CombinedFile file({{"a", form("first")}, {"b", form("second")}, {"c", form("third")}});
    QPDFAcroFormDocumentHelper helper(file.Pdf());
    std::set<std::string> names, values;
    for (auto& field : helper.getFormFields()) {
        names.insert(field.getFullyQualifiedName());
        values.insert(field.getValueAsString());
    }
    EXPECT_EQ(names.size(), 3u);
    EXPECT_TRUE(names.contains("name"));
    EXPECT_EQ(values, (std::set<std::string>{"first", "second", "third"}));
    for (std::size_t page = 0; page < 3; ++page) {
        EXPECT_TRUE(names.contains(
            helper.getFieldForAnnotation(QPDFAnnotationObjectHelper(file.Annotation(page)))
                .getFullyQualifiedName()));
    }
}

TEST(PdfCombine, KeepsLayersHidden) {
    const auto layers = [](const std::string& shown) {
        PdfBuilder pdf = OnePage("/Resources <</Properties <</L1 5 0 R /L2 6 0 R>>>>",
                                 "/OCProperties <</OCGs [5 0 R 6 0 R] /D <<" + shown + ">>>>");
        pdf.Add("<</Type /OCG /Name (shown)>>");
        pdf.Add("<</Type /OCG /Name (hidden)>>");
        return pdf.File();
    };
    CombinedFile file(
        {{"a", layers("/OFF [6 0 R]")}, {"b", layers("/BaseState /OFF /ON [5 0 R]")}});
    auto merged = file.Pdf().getRoot().getKey("/OCProperties");
    EXPECT_EQ(merged.getKey("/OCGs").getArrayNItems(), 4);
    auto hidden = merged.getKey("/D").getKey("/OFF");
    ASSERT_EQ(hidden.getArrayNItems(), 2);
    for (int part = 0; part < 2; ++part) {
        auto used = file.Page(static_cast<std::size_t>(part))
                        .getKey("/Resources")
                        .getKey("/Properties")
                        .getKey("/L2");
        EXPECT_TRUE(hidden.getArrayItem(part).isSameObjectAs(used));
    }
}

TEST(PdfCombine, NamesThePartThatIsRefused) {
    const std::string good = Pages(1, 0);
    const std::string cut = good.substr(0, good.size() / 2);
    const CombinedPdf damaged = Combined({{"a", good}, {"b", cut}});
    EXPECT_EQ(damaged.outcome, CleanOutcome::Damaged);
    EXPECT_EQ(damaged.refused, 1u);
    EXPECT_TRUE(damaged.bytes.empty());
    const std::string signedFile = OnePage("", "/Perms <</DocMDP <</Type /Sig /Contents <00> "
                                               "/ByteRange [0 1 2 3]>>>>")
                                       .File();
    const CombinedPdf signature = Combined({{"a", good}, {"b", good}, {"c", signedFile}});
    EXPECT_EQ(signature.outcome, CleanOutcome::Signed);
    EXPECT_EQ(signature.refused, 2u);
}

TEST(PdfCombine, RefusesAnEncryptedPart) {
    const std::string plain = Pages(1, 0);
    QPDF pdf;
    pdf.processMemoryFile("plain", plain.data(), plain.size());
    QPDFWriter writer(pdf);
    writer.setOutputMemory();
    writer.setR6EncryptionParameters("", "owner", true, true, true, true, true, true, qpdf_r3p_full,
                                     true);
    writer.write();
    const auto written = writer.getBufferSharedPointer();
    const std::string file(reinterpret_cast<const char*>(written->getBuffer()), written->getSize());
    EXPECT_EQ(Combined({{"a", file}}).outcome, CleanOutcome::Encrypted);
}

TEST(PdfCombine, GivesEqualBytesForEqualParts) {
    const std::vector<Part> parts{{"a", Pages(2, 0)}, {"b", Pages(1, 20)}, {"a", Pages(2, 0)}};
    EXPECT_EQ(Combined(parts).bytes, Combined(parts).bytes);
}

TEST(PdfCombine, CombinesAHundredFilesAndLongChainsOfBookmarks) {
    PdfBuilder chain = OnePage("", "/Outlines 5 0 R");
    chain.Add("<</Type /Outlines /First 6 0 R>>");
    for (int item = 0; item < 20000; ++item) {
        chain.Add("<</Title (x) /Parent 5 0 R /Next " + std::to_string(item + 7) + " 0 R>>");
    }
    chain.Add("<</Title (last) /Parent 5 0 R>>");
    std::vector<Part> parts{{"long", chain.File()}};
    for (int part = 0; part < 100; ++part) parts.push_back({"part", Pages(1, part)});
    CombinedFile file(parts);
    EXPECT_EQ(file.Sizes().size(), 101u);
}

} // namespace
