// Sizes at and beyond the limits, without recursion and with linear work; memory that runs out.
#include <gtest/gtest.h>

#include <new>

#include "tests/support/Allocations.h"
#include "tests/unit/ObLibX/xml/document/Records.h"
#include "tests/unit/ObLibX/xml/scan/Scans.h"

namespace ObLibX {
namespace {

using obtest::FailingAllocations;

constexpr std::size_t kMillion = 1000000;

std::wstring Times(std::wstring_view piece, std::size_t count) {
    std::wstring text;
    text.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        text += piece;
    }
    return text;
}

TEST(ParserLimits, ADepthOfAMillionKeepsTheLevelOutOfTheFlags) {
    XmlOffsetDocument document;
    EXPECT_TRUE(
        document.SetText(std::wstring_view(Times(L"<a>", kMillion) + Times(L"</a>", kMillion))));
    EXPECT_EQ(FaultsOf(document), "");
    const ElementRecordTable& records = *document.State().records;
    EXPECT_EQ(records[65534].flagsAndLevel, kRecordFirstSibling | 65534);
    EXPECT_EQ(records[65535].flagsAndLevel, kRecordFirstSibling | 65535);
    EXPECT_EQ(records[65536].flagsAndLevel, kRecordFirstSibling | 65535);
    EXPECT_EQ(records[kMillion].flagsAndLevel, kRecordFirstSibling | 65535);
    EXPECT_EQ(records[kMillion].parent, kMillion - 1);
    EXPECT_EQ(records[1].length, 7 * kMillion);
}

TEST(ParserLimits, AMillionUnendedTagsBecomeSiblings) {
    XmlOffsetDocument document;
    EXPECT_FALSE(document.SetText(std::wstring_view(Times(L"<a>", kMillion))));
    EXPECT_EQ(FaultsOf(document), "");
    const ElementRecordTable& records = *document.State().records;
    for (std::uint32_t i = 1; i <= kMillion; ++i) {
        ASSERT_EQ(records[i].parent, 0u);
        ASSERT_EQ(records[i].next, i == kMillion ? 0 : i + 1);
        ASSERT_EQ(records[i].Has(kRecordFirstSibling), i == 1);
    }
    EXPECT_EQ(records[1].prev, kMillion);
    EXPECT_LT(document.Result().size(), 1100u);
}

// The texts of this suite are so long that work which grows with the square of the length can't end
// within the suite's limit: to look through the rest of the text at each piece would be more than
// 3e12 units, and vector instructions compare 2.4e10 units a second at the most. Work that grows
// with the length takes one or two seconds. A suite of its own has the whole limit, also on a busy
// machine.
constexpr std::size_t kPiecesForSquare = kMillion;

TEST(ParserWork, IsLinearInUnendedTags) {
    const std::wstring tags = Times(L"<a><b/>", kPiecesForSquare);
    XmlOffsetDocument document;
    EXPECT_FALSE(document.SetText(std::wstring_view(tags)));
    EXPECT_EQ(document.State().nextFreePos, static_cast<int>(2 * kPiecesForSquare + 1));
    EXPECT_FALSE(document.SetText(std::wstring_view(L"<r>" + tags + L"</r>")));
    EXPECT_EQ(document.State().nextFreePos, static_cast<int>(2 * kPiecesForSquare + 2));
}

TEST(ParserWork, IsLinearInSyntaxErrors) {
    XmlOffsetDocument document;
    EXPECT_FALSE(document.SetText(std::wstring_view(Times(L"<1>", 2 * kPiecesForSquare))));
    EXPECT_FALSE(document.SetText(std::wstring_view(Times(L"<", 4 * kPiecesForSquare))));
    EXPECT_FALSE(
        document.SetText(std::wstring_view(L"<!DOCTYPE" + Times(L"<!--", 2 * kPiecesForSquare))));
    EXPECT_FALSE(document.SetText(std::wstring_view(Times(L"<a b='", kPiecesForSquare))));
}

std::wstring StartTagOf(std::size_t units) { return L"<a " + std::wstring(units - 4, L'b') + L">"; }

TEST(ParserLimits, AStartTagThatFitsItsFieldIsOrdinary) {
    XmlOffsetDocument document;
    EXPECT_TRUE(document.SetText(std::wstring_view(StartTagOf(4194303) + L"</a>")));
    const ElementRecord& record = (*document.State().records)[1];
    EXPECT_EQ(record.StartTagLength(), 4194303u);
    EXPECT_EQ(record.EndTagLength(), 4u);
    EXPECT_EQ(record.length, 4194307u);
    EXPECT_TRUE(document.Result().empty());
}

TEST(ParserLimits, AStartTagOneLongerIsIndexedAsBadAndReported) {
    XmlOffsetDocument document;
    EXPECT_FALSE(document.SetText(std::wstring_view(L"<r>" + StartTagOf(4194304) + L"</a></r>")));
    const ElementRecordTable& records = *document.State().records;
    EXPECT_EQ(records[2].StartTagLength(), 4194303u);
    EXPECT_EQ(records[2].EndTagLength(), 4u);
    EXPECT_EQ(records[2].length, 4194308u);
    EXPECT_TRUE(records[2].Has(kRecordBad));
    EXPECT_TRUE(records[1].Has(kRecordBadBelow));
    EXPECT_TRUE(records[0].Has(kRecordBad));
    EXPECT_EQ(ReportsOf(document), "<tag_too_long type=\"start_tag\" offset=\"3\"/>");
}

TEST(ParserLimits, AnEmptyElementsTagOneLongerKeepsItsWholeLength) {
    XmlOffsetDocument document;
    const std::wstring tag = L"<a " + std::wstring(4194304 - 5, L' ') + L"/>";
    EXPECT_FALSE(document.SetText(std::wstring_view(L"<r>" + tag + L"<b/></r>")));
    EXPECT_EQ(FaultsOf(document), "");
    const ElementRecordTable& records = *document.State().records;
    EXPECT_EQ(records[2].length, 4194304u);
    EXPECT_EQ(records[2].tagLengths, 4194303u);
    EXPECT_TRUE(records[2].Has(kRecordBad));
    EXPECT_EQ(records[2].next, 3u);
    EXPECT_EQ(ReportsOf(document), "<tag_too_long type=\"start_tag\" offset=\"3\"/>");
}

TEST(ParserLimits, ANameTooLongForATagIsLeftOutOfItsReport) {
    XmlOffsetDocument document;
    EXPECT_FALSE(document.SetText(std::wstring_view(L"<a/></" + std::wstring(4194304, L'b'))));
    EXPECT_EQ(ReportsOf(document), "<unterminated_tag_syntax type=\"end_tag\" offset=\"4\"/>");
    EXPECT_FALSE(
        document.SetText(std::wstring_view(L"<a/></" + std::wstring(4194304, L'b') + L">")));
    EXPECT_EQ(ReportsOf(document), "<lone_end_tag offset=\"4\"/>");
}

TEST(ParserLimits, AnEndTagMayHaveAsManyUnitsAsItsFieldCanCount) {
    XmlOffsetDocument document;
    EXPECT_TRUE(document.SetText(std::wstring_view(L"<a></a" + std::wstring(1019, L' ') + L">")));
    EXPECT_EQ((*document.State().records)[1].EndTagLength(), 1023u);
    EXPECT_FALSE(document.SetText(std::wstring_view(L"<a></a" + std::wstring(1020, L' ') + L">")));
    const ElementRecord& record = (*document.State().records)[1];
    EXPECT_EQ(record.EndTagLength(), 1023u);
    EXPECT_EQ(record.StartTagLength(), 3u);
    EXPECT_EQ(record.length, 1027u);
    EXPECT_TRUE(record.Has(kRecordBad));
    EXPECT_EQ(ReportsOf(document), "<tag_too_long type=\"end_tag\" offset=\"3\"/>");
}

TEST(ParserLimits, ATextOfAHundredMillionUnitsIsRead) {
    std::wstring text(std::size_t{1} << 27, L'x');
    text.replace(0, 3, L"<a>");
    text.replace(text.size() - 4, 4, L"</a>");
    XmlOffsetDocument document;
    EXPECT_TRUE(document.SetText(std::wstring_view(text)));
    EXPECT_EQ((*document.State().records)[1].length, 1u << 27);
    EXPECT_EQ((*document.State().records)[0].length, 1u << 27);
    EXPECT_FALSE(document.SetText(nullptr));
}

TEST(ParserLimits, ATextOfTwoThousandMillionUnitsIsRefusedUnread) {
    XmlOffsetDocument document;
    ASSERT_TRUE(document.SetText(L"<a/>"));
    // Nobody looks at units of a text that is too long, so that it needn't be there.
    EXPECT_FALSE(document.SetText(std::wstring_view(L"", std::size_t{1} << 31)));
    EXPECT_EQ(document.Text(), L"<a/>");
    EXPECT_EQ(document.State().nextFreePos, 2);
}

// ---- Memory

// Of a text that is set in a document that exists.
std::size_t AllocationsOf(const std::wstring& text) {
    XmlOffsetDocument document;
    bool answer = false;
    const std::size_t count =
        obtest::CountAllocations([&] { answer = document.SetText(std::wstring_view(text)); });
    EXPECT_TRUE(answer);
    return count;
}

TEST(ParserMemory, NoNodeIsAnAllocation) {
    const std::wstring few = L"<r>" + Times(L"<a b='c'>d</a><!--e-->", 1000) + L"</r>";
    const std::wstring many = L"<r>" + Times(L"<a b='c'>d</a><!--e-->", 100000) + L"</r>";
    // The text, and the segments as they grow.
    EXPECT_LE(AllocationsOf(few), 8u);
    EXPECT_LE(AllocationsOf(many), 16u);
}

// Each allocation fails in turn; the document is then set anew, and another is released as it is.
void ExpectEachFailureSurvived(const std::wstring& text, bool andLater) {
    std::size_t which = 0;
    for (bool failed = true; failed; ++which) {
        ASSERT_LT(which, 5000u);
        {
            XmlOffsetDocument released;
            const FailingAllocations failure({.succeeding = which, .once = !andLater});
            try {
                released.SetText(std::wstring_view(text));
            } catch (const std::bad_alloc&) {
                EXPECT_TRUE(failure.Failed());
            }
        }
        XmlOffsetDocument document;
        {
            const FailingAllocations failure({.succeeding = which, .once = !andLater});
            try {
                document.SetText(std::wstring_view(text));
            } catch (const std::bad_alloc&) {
            }
            failed = failure.Failed();
        }
        ASSERT_TRUE(document.SetText(L"<a><b/></a>")) << "after failure " << which;
        ASSERT_EQ(FaultsOf(document), "") << "after failure " << which;
        ASSERT_EQ(document.State().nextFreePos, 3);
    }
    EXPECT_GT(which, 3u) << "nothing was allocated";
}

TEST(ParserMemory, EachAllocationMayFail) {
    const std::wstring good = L"<r>" + Times(L"<a><b/></a>", 3000) + L"</r>";
    const std::wstring bad = Times(L"<long_name_of_an_element><1>", 30) + L"</none>";
    for (const bool andLater : {false, true}) {
        ExpectEachFailureSurvived(good, andLater);
        ExpectEachFailureSurvived(bad, andLater);
        ExpectEachFailureSurvived(bad + L"<!DOCTYPE a [<!X>]>", andLater);
        ExpectEachFailureSurvived(L"<a/><b>", andLater);
    }
}

TEST(ParserMemory, ADocumentThatCantBeMadeLeavesNothing) {
    std::size_t which = 0;
    for (bool failed = true; failed; ++which) {
        const FailingAllocations failure({.succeeding = which, .once = true});
        try {
            XmlOffsetDocument document;
        } catch (const std::bad_alloc&) {
        }
        failed = failure.Failed();
    }
    // The records, their table, its pointers and the saved positions, and the run that came
    // through.
    EXPECT_GE(which, 5u);
}

} // namespace
} // namespace ObLibX
