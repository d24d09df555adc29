// Links, bookmarks and actions of PDFs that become one: they lead where they led.
#include <qpdf/QPDFOutlineDocumentHelper.hh>

#include "tests/unit/services/transforms/combine/CombinedFile.h"

using namespace samples;

namespace {

std::string Link(const std::string& keys) {
    return "/Annots [<</Type /Annot /Subtype /Link /Rect [0 0 9 9] " + keys + ">>]";
}

// Where the link on a page leads.
QPDFObjectHandle PlaceOf(CombinedFile& file, std::size_t page) {
    auto link = file.Annotation(page);
    return link.hasKey("/Dest") ? link.getKey("/Dest") : link.getKey("/A").getKey("/D");
}

TEST(PdfPlaces, OfLinksAreTheSamePages) {
    for (const char* link :
         {"/Dest [5 0 R /Fit]", "/A <</S /GoTo /D [5 0 R /XYZ 1 2 3]>>", "/Dest /there",
          "/Dest (here)", "/A <</S /GoTo /D (here)>>", "/Dest [2 /Fit]",
          "/A <</S /GoTo /D [2 /Fit]>>", "/Dest 6 0 R", "/A 7 0 R"}) {
        const std::string part =
            Pages(3, 20, Link(link),
                  "/Dests <</there [5 0 R /Fit]>> /Names <</Dests <</Names [(here) "
                  "<</D [5 0 R /Fit]>>]>>>>",
                  {"[5 0 R /Fit]", "<</S /GoTo /D 6 0 R>>"});
        CombinedFile file({{"a", Pages(2, 0)}, {"b", part}, {"c", part}});
        for (const std::size_t page : {2u, 5u}) {
            auto place = PlaceOf(file, page);
            ASSERT_TRUE(place.isArray()) << link;
            EXPECT_TRUE(place.getArrayItem(0).isSameObjectAs(file.Page(page + 2))) << link;
        }
    }
}

TEST(PdfPlaces, OfActionsThatFollowOthersAreTheSamePages) {
    const std::string part =
        Pages(2, 20, Link("/A <</S /Named /N /Print /Next <</S /GoTo /D (here)>>>>"),
              "/Names <</Dests <</Names [(here) [4 0 R /Fit]]>>>>");
    CombinedFile file({{"a", Pages(2, 0)}, {"b", part}});
    auto next = file.Annotation(2).getKey("/A").getKey("/Next");
    EXPECT_TRUE(next.getKey("/D").getArrayItem(0).isSameObjectAs(file.Page(3)));
}

TEST(PdfPlaces, InOtherFilesStayNumbers) {
    CombinedFile file({{"a", Pages(1, 0)},
                       {"b", Pages(1, 0, Link("/A <</S /GoToR /F (other.pdf) /D [7 /Fit]>>"))}});
    auto action = file.Annotation(1).getKey("/A");
    EXPECT_EQ(action.getKey("/D").unparse(), "[ 7 /Fit ]");
    EXPECT_EQ(action.getKey("/F").getStringValue(), "other.pdf");
}

TEST(PdfPlaces, ThatTheFileLacksLeadNowhere) {
    // Page 4 isn't in the tree.
    for (const char* link :
         {"/Dest (gone)", "/Dest [9 /Fit]", "/Dest [-1 /Fit]", "/Dest [4 0 R /Fit]", "/Dest []"}) {
        CombinedFile file(
            {{"a", Pages(1, 0, Link(link), "", {"<</Type /Page>>"})}, {"b", Pages(1, 5)}});
        EXPECT_FALSE(file.Annotation(0).hasKey("/Dest")) << link;
        EXPECT_EQ(file.Sizes(), (std::vector<int>{100, 105}));
    }
}

TEST(PdfPlaces, OnTheWebStay) {
    CombinedFile file({{"a", Pages(1, 0, Link("/A <</S /URI /URI (https://example.com)>>"))}});
    EXPECT_EQ(file.Annotation(0).getKey("/A").getKey("/URI").getStringValue(),
              "https://example.com");
}

TEST(PdfPlaces, OfABookmarkForEachPartAreItsFirstPageWithItsOwnBelow) {
    PdfBuilder pdf = OnePage("", "/Outlines 5 0 R");
    pdf.Add("<</Type /Outlines /First 6 0 R /Last 7 0 R /Count 2>>");
    pdf.Add("<</Title (One) /Parent 5 0 R /Next 7 0 R /Dest [3 0 R /Fit]>>");
    pdf.Add("<</Title (Two) /Parent 5 0 R /Prev 6 0 R /A <</S /GoTo /D [0 /Fit]>>>>");
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

// The catalog and the trees above it would bring the whole part a second time.
TEST(PdfPlaces, BringNothingOfTheFileAsAWhole) {
    const char* const keys[] = {"/Threads",  "/Metadata",   "/PageLabels", "/StructTreeRoot",
                                "/MarkInfo", "/OpenAction", "/AA"};
    const std::string catalog =
        "/Threads [5 0 R] /Metadata 5 0 R /PageLabels <</Nums [0 <</S /r>>]>> "
        "/StructTreeRoot 5 0 R /MarkInfo <</Marked true>> "
        "/OpenAction <</S /JavaScript /JS (canary)>> /AA <</WC 6 0 R>> "
        "/Names <</JavaScript <</Names [(canary) 6 0 R]>>>>";
    std::string part = Pages(2, 0, Link("/Dest [4 0 R /Fit] /Other 1 0 R /Tree 2 0 R"), catalog,
                             {"<</Type /StructElem /P 1 0 R>>", "<</S /JavaScript /JS (canary)>>",
                              "<</Title (canary) /Author (canary)>>"});
    const std::size_t trailer = part.find("/Root ");
    ASSERT_NE(trailer, std::string::npos);
    part.insert(trailer, "/Info 7 0 R ");
    CombinedFile file({{"a", part}, {"b", part}});
    auto link = file.Annotation(0);
    EXPECT_FALSE(link.hasKey("/Other"));
    EXPECT_FALSE(link.hasKey("/Tree"));
    for (const char* const key : keys) EXPECT_FALSE(file.Catalog().hasKey(key)) << key;
    auto names = file.Catalog().getKey("/Names");
    EXPECT_FALSE(names.isDictionary() && names.hasKey("/JavaScript"));
    EXPECT_FALSE(file.Pdf().getTrailer().hasKey("/Info"));
    for (auto& object : file.Pdf().getAllObjects())
        EXPECT_EQ(object.unparse().find("canary"), std::string::npos);
}

} // namespace
