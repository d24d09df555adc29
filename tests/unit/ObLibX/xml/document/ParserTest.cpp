#include <gtest/gtest.h>

#include "ObLibX/src/xml/scan/DocumentReport.h"
#include "tests/unit/ObLibX/xml/document/Records.h"
#include "tests/unit/ObLibX/xml/scan/Scans.h"

namespace ObLibX {
namespace {

class Parser : public testing::Test {
protected:
    bool Set(std::wstring_view text) {
        const bool answer = document_.SetText(text);
        EXPECT_EQ(FaultsOf(document_), "") << RecordsOf(document_);
        return answer;
    }
    const ElementRecord& Root() { return (*document_.State().records)[0]; }
    XmlOffsetDocument document_;
};

// ---- Well formed documents

TEST_F(Parser, IndexesOneElement) {
    EXPECT_TRUE(Set(L"<a></a>"));
    EXPECT_EQ(RecordsOf(document_),
              "a 0+7 tags 3/4 level 1 parent 0 child 0 next 0 prev 1 first\n");
    EXPECT_EQ(Root().start, 0u);
    EXPECT_EQ(Root().length, 7u);
    EXPECT_EQ(Root().tagLengths, 0u);
    EXPECT_EQ(Root().flagsAndLevel, 0u);
    EXPECT_EQ(Root().firstChild, 1u);
    EXPECT_EQ(Root().next, 0u);
    EXPECT_TRUE(document_.Result().empty());
}

TEST_F(Parser, IndexesAnEmptyElement) {
    EXPECT_TRUE(Set(L"  <a b='>'/>\r\n"));
    EXPECT_EQ(RecordsOf(document_),
              "a 2+10 tags 10/0 level 1 parent 0 child 0 next 0 prev 1 first\n");
    EXPECT_EQ(Root().length, 14u);
}

TEST_F(Parser, LinksSiblingsAndChildren) {
    EXPECT_TRUE(Set(L"<?xml?><a>x<b/><c><d/>y</c ><!--e--><f></f></a>"));
    EXPECT_EQ(RecordsOf(document_), "a 7+40 tags 3/4 level 1 parent 0 child 2 next 0 prev 1 first\n"
                                    "b 11+4 tags 4/0 level 2 parent 1 child 0 next 3 prev 5 first\n"
                                    "c 15+13 tags 3/5 level 2 parent 1 child 4 next 5 prev 2\n"
                                    "d 18+4 tags 4/0 level 3 parent 3 child 0 next 0 prev 4 first\n"
                                    "f 36+7 tags 3/4 level 2 parent 1 child 0 next 0 prev 3\n");
}

TEST_F(Parser, GivesOtherNodesNoRecord) {
    EXPECT_TRUE(Set(L"<!DOCTYPE a [<!ENTITY b '<c>'>]><!--<d>--><a><![CDATA[<e>]]><?f <g>?></a>"));
    EXPECT_EQ(document_.State().nextFreePos, 2);
}

TEST_F(Parser, FillsSeveralSegments) {
    std::wstring text = L"<r>";
    for (int i = 0; i < 200000; ++i) {
        text += L"<a/>";
    }
    EXPECT_TRUE(Set(text + L"</r>"));
    const ElementRecordTable& records = *document_.State().records;
    EXPECT_EQ(document_.State().nextFreePos, 200002);
    EXPECT_EQ(records[1].firstChild, 2u);
    EXPECT_EQ(records[2].prev, 200001u);
    for (const std::uint32_t at : {65534u, 65535u, 65536u, 65537u, 131071u, 131072u, 131073u}) {
        EXPECT_EQ(records[at].start, 3 + (at - 2) * 4) << at;
        EXPECT_EQ(records[at].prev, at - 1) << at;
        EXPECT_EQ(records[at].next, at + 1) << at;
    }
}

TEST_F(Parser, IsPresizedByTheTextsLengthUpToTheSecondSegment) {
    EXPECT_TRUE(Set(L"<a>" + std::wstring(6400, L' ') + L"</a>"));
    EXPECT_EQ(document_.State().records->Size(), 6407u / 64 + 8);
    EXPECT_TRUE(Set(L"<a>" + std::wstring(64 * 200000, L' ') + L"</a>"));
    EXPECT_EQ(document_.State().records->Size(), 131072u);
}

TEST_F(Parser, SegmentsThatAreFullStayWhereTheyAreWhenTheNextTextIsSet) {
    EXPECT_TRUE(Set(L"<a>" + std::wstring(6400, L' ') + L"</a>"));
    const ElementRecord* first = &Root();
    EXPECT_TRUE(Set(L"<a/>"));
    EXPECT_EQ(&Root(), first) << "a table that suffices is kept";
}

TEST_F(Parser, ComparesNamesWithTheDocumentsCaseRule) {
    EXPECT_FALSE(Set(L"<Ab></aB>"));
    document_.SetFlags(kDocIgnoreCase);
    EXPECT_TRUE(Set(L"<Ab></aB>"));
}

// ---- Documents that aren't

TEST_F(Parser, AnEmptyTextIsFalseWithoutAReport) {
    EXPECT_FALSE(Set(L""));
    EXPECT_TRUE(document_.Result().empty());
    EXPECT_EQ(document_.State().nextFreePos, 1);
    EXPECT_EQ(Root().firstChild, 0u);
    EXPECT_FALSE(document_.SetText(L""));
}

TEST_F(Parser, ATextWithoutElementsReportsIt) {
    EXPECT_FALSE(Set(L" "));
    EXPECT_EQ(ReportsOf(document_), "<no_root_element/>");
    EXPECT_FALSE(Set(L"text<!--c-->"));
    EXPECT_EQ(ReportsOf(document_), "<no_root_element/>");
    EXPECT_EQ(Root().length, 12u);
}

TEST_F(Parser, ASecondRootIsIndexedAndReported) {
    EXPECT_FALSE(Set(L"<a/><b/>"));
    EXPECT_EQ(ReportsOf(document_), "<root_has_sibling/>");
    EXPECT_EQ(RecordsOf(document_), "a 0+4 tags 4/0 level 1 parent 0 child 0 next 2 prev 2 first\n"
                                    "b 4+4 tags 4/0 level 1 parent 0 child 0 next 0 prev 1\n");
    EXPECT_EQ(Root().flagsAndLevel, 0u);
}

TEST_F(Parser, AnUnendedElementStaysBeforeTheEndTagOfTheOneAround) {
    EXPECT_FALSE(Set(L"<a><b></a>"));
    EXPECT_EQ(ReportsOf(document_),
              "<unended_start_tag tagname=\"b\" offset=\"3\" offset2=\"7\"/>");
    EXPECT_EQ(RecordsOf(document_),
              "a 0+10 tags 3/4 level 1 parent 0 child 2 next 0 prev 1 first below\n"
              "b 3+3 tags 3/0 level 2 parent 1 child 0 next 0 prev 2 first unended\n");
    EXPECT_TRUE(Root().Has(kRecordBad));
}

TEST_F(Parser, ChildrenOfAnUnendedElementBecomeItsFollowingSiblings) {
    EXPECT_FALSE(Set(L"<a><x/><b><c/><d><e/></d></a>"));
    EXPECT_EQ(RecordsOf(document_),
              "a 0+29 tags 3/4 level 1 parent 0 child 2 next 0 prev 1 first below\n"
              "x 3+4 tags 4/0 level 2 parent 1 child 0 next 3 prev 5 first\n"
              "b 7+3 tags 3/0 level 2 parent 1 child 0 next 4 prev 2 unended\n"
              "c 10+4 tags 4/0 level 3 parent 1 child 0 next 5 prev 3\n"
              "d 14+11 tags 3/4 level 3 parent 1 child 6 next 0 prev 4\n"
              "e 17+4 tags 4/0 level 4 parent 5 child 0 next 0 prev 6 first\n");
}

TEST_F(Parser, SeveralUnendedElementsAreReportedFromTheInnermostOn) {
    EXPECT_FALSE(Set(L"<a><b><c/><d><e/></a>"));
    EXPECT_EQ(ReportsOf(document_),
              "<unended_start_tag tagname=\"d\" offset=\"10\" offset2=\"18\"/>"
              "<unended_start_tag tagname=\"b\" offset=\"3\" offset2=\"18\"/>");
    EXPECT_EQ(RecordsOf(document_),
              "a 0+21 tags 3/4 level 1 parent 0 child 2 next 0 prev 1 first below\n"
              "b 3+3 tags 3/0 level 2 parent 1 child 0 next 3 prev 5 first unended\n"
              "c 6+4 tags 4/0 level 3 parent 1 child 0 next 4 prev 2\n"
              "d 10+3 tags 3/0 level 3 parent 1 child 0 next 5 prev 3 unended\n"
              "e 13+4 tags 4/0 level 4 parent 1 child 0 next 0 prev 4\n");
}

TEST_F(Parser, TheFlagOfAnUnendedElementMovesToItsParent) {
    EXPECT_FALSE(Set(L"<a><b><1></a>"));
    EXPECT_EQ(RecordsOf(document_),
              "a 0+13 tags 3/4 level 1 parent 0 child 2 next 0 prev 1 first below\n"
              "b 3+3 tags 3/0 level 2 parent 1 child 0 next 0 prev 2 first unended\n");
}

TEST_F(Parser, StopsAfterTheMatchThatWasFoundLower) {
    EXPECT_FALSE(Set(L"<r><a><b></a><c/></r>"));
    EXPECT_EQ(ReportsOf(document_),
              "<unended_start_tag tagname=\"b\" offset=\"6\" offset2=\"10\"/>");
    EXPECT_EQ(RecordsOf(document_),
              "r 0+13 tags 3/0 level 1 parent 0 child 2 next 0 prev 1 first unended\n"
              "a 3+10 tags 3/4 level 2 parent 1 child 3 next 0 prev 2 first below\n"
              "b 6+3 tags 3/0 level 3 parent 2 child 0 next 0 prev 3 first unended\n");
}

TEST_F(Parser, ALoneEndTagIsReportedAndStopsTheParsing) {
    EXPECT_FALSE(Set(L"</a>"));
    EXPECT_EQ(ReportsOf(document_), "<lone_end_tag tagname=\"a\" offset=\"0\"/><no_root_element/>");
    EXPECT_TRUE(Root().Has(kRecordBad));
    EXPECT_TRUE(Root().Has(kRecordBadBelow));
    EXPECT_FALSE(Set(L"<a/></b><c/>"));
    EXPECT_EQ(ReportsOf(document_), "<lone_end_tag tagname=\"b\" offset=\"4\"/>");
    EXPECT_EQ(document_.State().nextFreePos, 2);
}

TEST_F(Parser, ALoneEndTagLeavesItsAncestorsOpenWithTheirChildren) {
    EXPECT_FALSE(Set(L"<a><b><c/></x></b></a>"));
    EXPECT_EQ(ReportsOf(document_), "<lone_end_tag tagname=\"x\" offset=\"10\"/>");
    EXPECT_EQ(RecordsOf(document_),
              "a 0+10 tags 3/0 level 1 parent 0 child 2 next 0 prev 1 first unended\n"
              "b 3+7 tags 3/0 level 2 parent 1 child 3 next 0 prev 2 first unended below\n"
              "c 6+4 tags 4/0 level 3 parent 2 child 0 next 0 prev 3 first\n");
}

TEST_F(Parser, AnElementThatIsOpenAtTheEndIsReportedWithTheTextsLength) {
    EXPECT_FALSE(Set(L"<a>text"));
    EXPECT_EQ(ReportsOf(document_),
              "<unended_start_tag tagname=\"a\" offset=\"0\" offset2=\"7\"/>");
    EXPECT_EQ(RecordsOf(document_),
              "a 0+3 tags 3/0 level 1 parent 0 child 0 next 0 prev 1 first unended\n");
    EXPECT_TRUE(Root().Has(kRecordBad));
    EXPECT_TRUE(Root().Has(kRecordBadBelow));
}

TEST_F(Parser, ChildrenOfAnUnendedRootBecomeRootsToo) {
    EXPECT_FALSE(Set(L"<a><b/>"));
    EXPECT_EQ(ReportsOf(document_),
              "<unended_start_tag tagname=\"a\" offset=\"0\" offset2=\"7\"/><root_has_sibling/>");
    EXPECT_EQ(RecordsOf(document_),
              "a 0+3 tags 3/0 level 1 parent 0 child 0 next 2 prev 2 first unended\n"
              "b 3+4 tags 4/0 level 2 parent 0 child 0 next 0 prev 1\n");
}

TEST_F(Parser, AScanErrorMarksTheDocumentAndTheInnermostElementAndParsingContinues) {
    EXPECT_FALSE(Set(L"<a><b><1></b><c/></a>"));
    EXPECT_EQ(ReportsOf(document_), "<first_tag_syntax offset=\"7\"/>");
    EXPECT_EQ(RecordsOf(document_),
              "a 0+21 tags 3/4 level 1 parent 0 child 2 next 0 prev 1 first\n"
              "b 3+10 tags 3/4 level 2 parent 1 child 0 next 3 prev 3 first below\n"
              "c 13+4 tags 4/0 level 2 parent 1 child 0 next 0 prev 2\n");
    EXPECT_TRUE(Root().Has(kRecordBad));
}

TEST_F(Parser, AnUnquotedSlashDoesNotEndTheElement) {
    EXPECT_FALSE(Set(L"<a href=x/>"));
    EXPECT_EQ(ReportsOf(document_),
              "<unended_start_tag tagname=\"a\" offset=\"0\" offset2=\"11\"/>");
    EXPECT_TRUE(Set(L"<a href=\"x\"/>"));
}

TEST_F(Parser, ReportsFollowEachOther) {
    EXPECT_FALSE(Set(L"<1><!-x<a><![b></a>"));
    EXPECT_EQ(ReportsOf(document_),
              "<first_tag_syntax offset=\"1\"/><comment_tag_syntax offset=\"6\"/>"
              "<cdata_section_syntax offset=\"13\"/>");
}

TEST_F(Parser, ReportsStopAtTheLimitAndIndexingContinues) {
    std::wstring text = L"<a>";
    for (int i = 0; i < 5000; ++i) {
        text += L"<1><b/>";
    }
    EXPECT_FALSE(Set(text + L"</a>"));
    EXPECT_GE(document_.Result().size(), 1000u);
    EXPECT_LT(document_.Result().size(), 1100u);
    EXPECT_EQ(document_.State().nextFreePos, 5002);
    EXPECT_EQ(document_.Result().substr(0, 30), L"<first_tag_syntax offset=\"4\"/>");
}

// As many errors of two kinds as make a report of exactly the limit.
TEST_F(Parser, AReportOfExactlyTheLimitTakesNoMore) {
    std::wstring ones = L"<a>";
    for (int first = 0; first < 35; ++first, ones += L"<1>") {
        std::wstring text = ones;
        for (int second = 0; second < 35; ++second, text += L"<!x>") {
            EXPECT_EQ(document_.SetText(std::wstring_view(text + L"</a>")), first + second == 0);
            if (document_.Result().size() != 1000) {
                continue;
            }
            const std::wstring full = document_.Result();
            EXPECT_FALSE(Set(text + L"<1><b></a>"));
            EXPECT_EQ(document_.Result(), full);
            return;
        }
    }
    FAIL() << "no such report";
}

// A document type with all its declarations is one step of the scanner, whose reports have a limit
// of their own.
TEST_F(Parser, TheReportsOfOneStepAreAppendedInFullPastTheLimit) {
    std::wstring text = L"<1><2><!D";
    for (int i = 0; i < 200; ++i) {
        text += L" <!x>";
    }
    EXPECT_FALSE(Set(text + L"><r/>"));
    const std::wstring full = document_.Result();
    EXPECT_GT(full.size(), kReportLimit);
    EXPECT_LT(full.size(), 2 * kReportLimit);
    EXPECT_NE(full.rfind(L"<doctype_tag_syntax"), full.find(L"<doctype_tag_syntax"));
    EXPECT_FALSE(Set(text + L"><1><r><b></r>"));
    EXPECT_EQ(document_.Result(), full);
}

// ---- The document around it

TEST_F(Parser, ClearsEveryPositionAndTheFormerResult) {
    EXPECT_FALSE(Set(L"<a><b/>"));
    document_.ResetPosition(1, 2, 3);
    document_.State().savedPositions->insert({L"here", {1, 2, 3}});
    document_.State().deletedPos = 2;
    EXPECT_TRUE(Set(L"<a><b/></a>"));
    EXPECT_EQ(document_.ParentPosition(), 0);
    EXPECT_EQ(document_.CurrentPosition(), 0);
    EXPECT_EQ(document_.ChildPosition(), 0);
    EXPECT_EQ(document_.State().nodeType, 0);
    EXPECT_EQ(document_.State().deletedPos, 0);
    EXPECT_TRUE(document_.State().savedPositions->empty());
    EXPECT_TRUE(document_.Result().empty());
}

TEST_F(Parser, NullReleasesTextAndRecords) {
    EXPECT_TRUE(Set(L"<a>" + std::wstring(100000, L' ') + L"</a>"));
    EXPECT_FALSE(document_.SetText(nullptr));
    EXPECT_TRUE(document_.Text().empty());
    EXPECT_LT(document_.Text().capacity(), 100u);
    EXPECT_EQ(document_.State().records->Size(), 8u);
    EXPECT_TRUE(document_.Result().empty());
}

TEST_F(Parser, IsCreatedEmpty) {
    EXPECT_TRUE(document_.Text().empty());
    EXPECT_EQ(document_.Flags(), 0u);
    EXPECT_EQ(document_.State().nextFreePos, 1);
    EXPECT_EQ(document_.State().channel, nullptr);
    ASSERT_NE(document_.State().savedPositions, nullptr);
    EXPECT_TRUE(document_.State().savedPositions->empty());
    EXPECT_EQ(document_.State().records->Size(), 8u);
}

TEST_F(Parser, ResetPositionIsOnAnElementWhenThereIsACurrentOne) {
    EXPECT_TRUE(Set(L"<a><b/></a>"));
    document_.State().nodeLength = 3;
    document_.ResetPosition(1, 2, 0);
    EXPECT_EQ(document_.ParentPosition(), 1);
    EXPECT_EQ(document_.CurrentPosition(), 2);
    EXPECT_EQ(document_.State().nodeType, 1);
    EXPECT_EQ(document_.State().nodeLength, 0);
    document_.ResetPosition(1, 0, 0);
    EXPECT_EQ(document_.State().nodeType, 0);
}

TEST_F(Parser, TakesNoTextInAStreamMode) {
    EXPECT_TRUE(Set(L"<a/>"));
    for (const std::uint32_t mode : {kDocStreamRead, kDocStreamWrite}) {
        document_.State().docFlags = mode;
        EXPECT_FALSE(document_.SetText(L"<b/>"));
        EXPECT_FALSE(document_.SetText(nullptr));
        EXPECT_EQ(document_.Text(), L"<a/>");
        EXPECT_EQ(document_.State().nextFreePos, 2);
    }
    document_.State().docFlags = 0;
}

TEST_F(Parser, AnswersByTheModeInAStream) {
    ASSERT_FALSE(Set(L"<a/><b/>"));
    document_.State().docFlags = kDocStreamRead;
    EXPECT_TRUE(document_.ParseText()) << "only the flag counts";
    document_.State().docFlags = kDocStreamWrite;
    EXPECT_TRUE(document_.ParseText());
    document_.State().docFlags = 0;
    ASSERT_FALSE(Set(L"<a><1></a>"));
    document_.State().docFlags = kDocStreamRead;
    EXPECT_FALSE(document_.ParseText());
    document_.State().docFlags = kDocStreamWrite;
    EXPECT_TRUE(document_.ParseText());
    document_.State().docFlags = 0;
}

TEST_F(Parser, OnlyTheClientsFlagsAreSetFromOutside) {
    document_.SetFlags(0xFFFFFFFF);
    EXPECT_EQ(document_.Flags(), kDocIgnoreCase | kDocTrim | kDocCollapse);
    document_.State().docFlags |= kDocModified;
    document_.SetFlags(0);
    EXPECT_EQ(document_.Flags(), kDocModified);
    EXPECT_TRUE(Set(L"<a/>"));
    EXPECT_EQ(document_.Flags(), 0u);
}

TEST_F(Parser, ParsesItsTextAgain) {
    EXPECT_TRUE(Set(L"<a/>"));
    document_.State().text = L"<b><c/></b>";
    EXPECT_TRUE(document_.ParseText());
    EXPECT_EQ(document_.State().nextFreePos, 3);
    EXPECT_EQ(Root().length, 11u);
}

TEST_F(Parser, ClosesNothingInMemoryMode) {
    EXPECT_TRUE(Set(L"<a/>"));
    document_.Close();
    EXPECT_EQ(document_.Text(), L"<a/>");
    EXPECT_EQ(document_.State().nextFreePos, 2);
}

} // namespace
} // namespace ObLibX
