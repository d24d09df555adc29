// Stream reading: where a search ends, what is stored, what can be read.
#include <gtest/gtest.h>

#include <string>

#include "ObLibX/src/xml/document/DocumentState.h"
#include "tests/unit/ObLibX/xml/stream/StreamChecks.h"
#include "tests/unit/ObLibX/xml/stream/StreamFiles.h"

using namespace ObLibX;

namespace {

constexpr wchar_t kText[] =
    L"<?xml version=\"1.0\"?>\r\n<!-- <no/> -->\r\n<root a=\"1\" b='&lt;2>'>\r\n"
    L"  <empty/><text x=\"y\">plain &amp; simple</text>\r\n"
    L"  <deep><deeper><deepest z=\"9\">end</deepest></deeper> mixed <i>x</i></deep>\r\n"
    L"  <c><![CDATA[ <raw> ]]>and more</c><e></e>\x4E2D\xD83D\xDE00\r\n</root>";

// A document in stream reading at the start of a text.
class Stream {
public:
    explicit Stream(std::wstring_view text, std::int32_t blockSize = 4) : file_(text, L"UTF-8") {
        opened_ = document_.OpenForReading(file_.Path(), {.encoding = {}, .blockSize = blockSize});
    }
    bool Opened() const { return opened_; }
    XmlOffsetDocument& operator*() { return document_; }
    XmlOffsetDocument* operator->() { return &document_; }
    const ElementRecord& Record(std::int32_t position) {
        return (*document_.State().records)[static_cast<std::uint32_t>(position)];
    }

private:
    StreamFile file_;
    XmlOffsetDocument document_;
    bool opened_;
};

} // namespace

TEST(StreamReading, GivesWhatMemoryGivesForEveryBlockSize) {
    const std::wstring expected = ElementsOfText(kText);
    const StreamFile file(kText, L"UTF-8");
    for (std::int32_t block = 1; block < 400; ++block) {
        ASSERT_EQ(expected, ElementsOfFile(file.Path(), {.encoding = {}, .blockSize = block}))
            << "block of " << block;
    }
}

TEST(StreamReading, RewritesTheRecordOfALevelAndMarksItAsOpen) {
    Stream stream(L"<r><a/><b x='1'>t</b></r>");
    ASSERT_TRUE(stream.Opened());
    ASSERT_TRUE(stream->FindElement());
    EXPECT_EQ(stream->CurrentPosition(), 1);
    EXPECT_EQ(stream->ParentPosition(), 0);
    EXPECT_EQ(stream.Record(1).EndTagLength(), kStillOpen);
    EXPECT_EQ(stream.Record(1).Level(), 1u);
    ASSERT_TRUE(stream->IntoElement());
    ASSERT_TRUE(stream->FindElement());
    EXPECT_EQ(stream->GetTagName(), L"a");
    EXPECT_EQ(stream.Record(2).EndTagLength(), 0u);
    EXPECT_FALSE(stream->IntoElement()) << "a single tag";
    ASSERT_TRUE(stream->FindElement());
    EXPECT_EQ(stream->CurrentPosition(), 2);
    EXPECT_EQ(stream.Record(2).Level(), 2u);
    EXPECT_EQ(stream.Record(2).StartTagLength(), 9u);
    EXPECT_EQ(stream.Record(2).EndTagLength(), kStillOpen);
    EXPECT_EQ(stream->GetData(2), L"t");
    EXPECT_EQ(stream.Record(2).EndTagLength(), 4u);
    EXPECT_EQ(stream.Record(2).length, 14u);
    EXPECT_FALSE(stream->IntoElement()) << "read to its end";
}

TEST(StreamReading, KeepsTheNamesOfOpenElements) {
    Stream stream(L"<r><a><b/></a><c/></r>");
    for (const wchar_t* path : {L"r", L"a", L"b"}) {
        ASSERT_TRUE(stream->FindElement(path));
        stream->IntoElement();
    }
    EXPECT_EQ(stream->GetAttribute(1, L"x"), L"") << "the root's tag has gone";
    ASSERT_TRUE(stream->OutOfElement());
    EXPECT_EQ(stream->GetTagName(), L"a");
    EXPECT_EQ(stream->ChildPosition(), 3);
    ASSERT_TRUE(stream->OutOfElement());
    EXPECT_EQ(stream->GetTagName(), L"r");
    EXPECT_FALSE(stream->OutOfElement());
    ASSERT_TRUE(stream->IntoElement()) << "r is still open";
    ASSERT_TRUE(stream->FindElement());
    EXPECT_EQ(stream->GetTagName(), L"c") << "the rest of a is passed over";
}

TEST(StreamReading, EndsASearchWithTheParent) {
    Stream stream(L"<r><a><b/></a><c/></r>");
    ASSERT_TRUE(stream->FindElement());
    ASSERT_TRUE(stream->IntoElement());
    ASSERT_TRUE(stream->FindElement());
    ASSERT_TRUE(stream->IntoElement());
    EXPECT_FALSE(stream->FindElement(L"c")) << "not in a";
    EXPECT_FALSE(stream->FindElement()) << "a has ended";
    ASSERT_TRUE(stream->OutOfElement());
    ASSERT_TRUE(stream->FindElement(L"c"));
    EXPECT_FALSE(stream->FindElement());
    ASSERT_TRUE(stream->OutOfElement());
    EXPECT_FALSE(stream->FindElement());
    EXPECT_TRUE(stream->ParseText()) << "nothing bad came by";
    EXPECT_TRUE(stream->Result().empty());
}

TEST(StreamReading, LeavesTheParentOnTheWayToAPathFromTheRootOrBelow) {
    Stream stream(L"<r><a><b/></a><c><d/></c><e/></r>");
    ASSERT_TRUE(stream->FindElement(L"/r/a/b"));
    EXPECT_EQ(stream->ParentPosition(), 2);
    ASSERT_TRUE(stream->FindElement(L"//d"));
    EXPECT_EQ(stream->CurrentPosition(), 3);
    EXPECT_EQ(stream->ParentPosition(), 2);
    EXPECT_FALSE(stream->FindElement()) << "c has ended";
    ASSERT_TRUE(stream->FindElement(L"//e")) << "a search of that kind doesn't care";
    EXPECT_EQ(stream->CurrentPosition(), 2);
    EXPECT_FALSE(stream->FindElement(L"//x"));
    EXPECT_EQ(stream->ParentPosition(), 0) << "nothing is open any more";
    EXPECT_EQ(stream->CurrentPosition(), 0);
    EXPECT_FALSE(stream->OutOfElement());
}

TEST(StreamReading, GivesDataThatReachesBeyondTheBuffer) {
    const std::wstring words(5000, L'w');
    Stream stream(L"<r><a x='1'>" + words + L"<!--c--><![CDATA[<]]>&amp;" + words +
                  L"</a><b/></r>");
    ASSERT_TRUE(stream->FindElement(L"/r/a"));
    EXPECT_EQ(stream->GetData(2), words + L"<&" + words);
    EXPECT_EQ(stream->GetData(2), words + L"<&" + words) << "as often as one likes";
    EXPECT_EQ(stream->GetAttribute(2, L"x"), L"1");
    EXPECT_EQ(stream->GetTagName(), L"a");
    ASSERT_TRUE(stream->FindElement());
    EXPECT_EQ(stream->GetTagName(), L"b");
}

TEST(StreamReading, GivesUpDataAtAChild) {
    Stream stream(L"<r a='1'>some words, then <b/> and <c/> more</r>");
    ASSERT_TRUE(stream->FindElement());
    EXPECT_EQ(stream->GetData(1), L"");
    EXPECT_EQ(stream->GetData(1), L"");
    EXPECT_EQ(stream->GetAttribute(1, L"a"), L"1") << "the start tag is kept";
    ASSERT_TRUE(stream->IntoElement()) << "it is still open";
    ASSERT_TRUE(stream->FindElement());
    EXPECT_EQ(stream->GetTagName(), L"b") << "the child isn't lost";
    EXPECT_EQ(stream->GetData(1), L"") << "its start has gone";
}

TEST(StreamReading, MakesANodeOfALoneEndTag) {
    Stream stream(L"<r><a/></zz ><b/></r>");
    ASSERT_TRUE(stream->FindElement());
    ASSERT_TRUE(stream->IntoElement());
    ASSERT_TRUE(stream->FindElement());
    EXPECT_TRUE(stream->ParseText());
    EXPECT_FALSE(stream->FindElement());
    EXPECT_EQ(stream->State().nodeType, kNodeLoneEndTag);
    EXPECT_EQ(stream->GetTagName(), L"zz");
    EXPECT_EQ(stream->GetData(0), L"zz");
    EXPECT_TRUE(stream.Record(0).Has(kRecordBad));
    EXPECT_FALSE(stream->ParseText());
    EXPECT_TRUE(ResultHas(*stream, L"<lone_end_tag tagname=\"zz\" offset="));
    ASSERT_TRUE(stream->FindElement());
    EXPECT_EQ(stream->GetTagName(), L"b");
    EXPECT_EQ(stream->State().nodeType, kNodeElement);
}

TEST(StreamReading, MakesANodeOfWhatCantBeRead) {
    Stream stream(L"<r><1 x><b/><!-x></r>");
    ASSERT_TRUE(stream->FindElement());
    ASSERT_TRUE(stream->IntoElement());
    EXPECT_FALSE(stream->FindElement());
    EXPECT_EQ(stream->State().nodeType, kNodeError);
    EXPECT_EQ(stream->GetTagName(), L"");
    EXPECT_EQ(stream->GetData(0), L"<1 x>");
    EXPECT_FALSE(stream->IntoElement()) << "a node isn't entered";
    EXPECT_TRUE(ResultHas(*stream, L"<first_tag_syntax "));
    EXPECT_FALSE(stream->ParseText());
    ASSERT_TRUE(stream->FindElement(L"b"));
    EXPECT_FALSE(stream->FindElement());
    EXPECT_EQ(stream->State().nodeType, kNodeError);
    EXPECT_TRUE(ResultHas(*stream, L"<comment_tag_syntax "));
}

TEST(StreamReading, PassesErrorsInDataOver) {
    Stream stream(L"<r>one <1> two</r>");
    ASSERT_TRUE(stream->FindElement());
    EXPECT_EQ(stream->GetData(1), L"one  two");
    EXPECT_TRUE(ResultHas(*stream, L"<first_tag_syntax "));
    EXPECT_FALSE(stream->ParseText());
}

TEST(StreamReading, ReportsWhatIsUnended) {
    Stream stream(L"<r><a><b><c></a><d/>");
    ASSERT_TRUE(stream->FindElement());
    ASSERT_TRUE(stream->IntoElement());
    ASSERT_TRUE(stream->FindElement(L"d")) << "a's end tag ends what is in it";
    EXPECT_TRUE(ResultHas(*stream, L"<unended_start_tag tagname=\"c\" offset2="));
    EXPECT_TRUE(ResultHas(*stream, L"<unended_start_tag tagname=\"b\" offset2="));
    EXPECT_FALSE(ResultHas(*stream, L"tagname=\"a\""));
    EXPECT_FALSE(stream->FindElement());
    EXPECT_TRUE(ResultHas(*stream, L"<unended_start_tag tagname=\"r\" offset2="));
    EXPECT_FALSE(stream->ParseText());
    EXPECT_TRUE(stream->Close()) << "nothing was written";
    EXPECT_TRUE(ResultHas(*stream, L"unended_start_tag")) << "the report outlives the stream";
}

TEST(StreamReading, HasNoDataForWhatIsUnended) {
    for (const wchar_t* text : {L"<r>text", L"<r>text</q></r>", L"<q><r>text</q>"}) {
        Stream stream(text);
        ASSERT_TRUE(stream->FindElement(L"//r"));
        EXPECT_EQ(stream->GetData(stream->CurrentPosition()), L"");
        EXPECT_EQ(stream->GetTagName(), L"r");
    }
}

TEST(StreamReading, CountsRootElementsAtTheEnd) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"<a/><b/>", L"<root_has_sibling/>\r\n"},
        {L" <!-- nothing --> ", L"<no_root_element/>\r\n"},
        {L"", L""},
        {L"<a/>", L""},
    };
    for (const auto& [text, report] : cases) {
        Stream stream(text);
        ASSERT_TRUE(stream.Opened());
        while (stream->FindElement()) {
        }
        EXPECT_FALSE(stream->FindElement());
        EXPECT_EQ(stream->Result(), report);
        EXPECT_TRUE(stream->ParseText()) << "none of them is a badly formed element";
    }
}

TEST(StreamReading, AnswersFalseWhereThereIsNoWayBack) {
    Stream stream(kText);
    ASSERT_TRUE(stream->FindElement());
    EXPECT_FALSE(stream->FindChildElement());
    EXPECT_FALSE(stream->FindChildElement(L"text"));
    EXPECT_FALSE(stream->AddElement(L"a", nullptr));
    EXPECT_FALSE(stream->SetAttribute(1, L"a", L"2"));
    EXPECT_FALSE(stream->SetText(L"<a/>"));
    EXPECT_FALSE(stream->SetText(nullptr));
    EXPECT_FALSE(stream->FindElement(L"root[text]")) << "a test for a child";
    EXPECT_FALSE(stream->FindElement(L"//b//c")) << "a bad path";
    EXPECT_EQ(stream->GetTagName(), L"root") << "and nothing has moved";
    EXPECT_EQ(stream->GetAttribute(1, L"b"), L"<2>");
}

TEST(StreamReading, CountsChildrenByName) {
    Stream stream(L"<r><a/><b/><a x='1'/><c><a/></c><a x='2'/><a x='3'/></r>");
    ASSERT_TRUE(stream->FindElement(L"/r/a[2]"));
    EXPECT_EQ(stream->GetAttribute(2, L"x"), L"1");
    ASSERT_TRUE(stream->FindElement(L"a[2]")) << "the second one from here on";
    EXPECT_EQ(stream->GetAttribute(2, L"x"), L"3");
    EXPECT_FALSE(stream->FindElement(L"a[1]"));
    Stream other(L"<r><a/><b/><A x='1'/></r>");
    EXPECT_FALSE(other->FindElement(L"/r/a[2]")) << "case counts";
    Stream any(L"<r><a/><b/><c/></r>");
    ASSERT_TRUE(any->FindElement(L"/*/*[3]"));
    EXPECT_EQ(any->GetTagName(), L"c");
}

TEST(StreamReading, FollowsTheCaseFlagOfTheOpening) {
    const StreamFile file(L"<R><a/><A x='1'></a><b/></r>", L"UTF-8");
    XmlOffsetDocument document;
    document.SetFlags(kDocIgnoreCase);
    ASSERT_TRUE(document.OpenForReading(file.Path()));
    EXPECT_TRUE(document.FindElement(L"/r/a[2]"));
    EXPECT_EQ(document.GetAttribute(2, L"X"), L"1");
    EXPECT_TRUE(document.FindElement(L"B"));
    EXPECT_FALSE(document.FindElement());
    EXPECT_TRUE(document.Result().empty());
    EXPECT_TRUE(document.Close());
    EXPECT_EQ(document.Flags(), kDocIgnoreCase);
    EXPECT_TRUE(document.Text().empty());
}

TEST(StreamReading, KnowsOfAnOpenElementItsNameAndCountButNotItsAttributes) {
    const wchar_t* const text = L"<r><a k='1'><b/><c/></a></r>";
    Stream byName(text);
    ASSERT_TRUE(byName->FindElement(L"/r/a/b"));
    EXPECT_TRUE(byName->FindElement(L"/r[1]/a/c"));
    Stream byAttribute(text);
    ASSERT_TRUE(byAttribute->FindElement(L"/r/a[@k='1']/b"));
    EXPECT_FALSE(byAttribute->FindElement(L"/r/a[@k='1']/c"));
}

TEST(StreamReading, ReturnsToMemoryModeWhenItIsClosed) {
    Stream stream(kText);
    ASSERT_TRUE(stream->FindElement());
    EXPECT_EQ(stream->Flags(), kDocStreamRead);
    EXPECT_TRUE(stream->Close());
    EXPECT_EQ(stream->Flags(), 0u);
    EXPECT_EQ(stream->CurrentPosition(), 0);
    EXPECT_FALSE(stream->FindElement());
    EXPECT_TRUE(stream->Close()) << "once more does nothing";
    EXPECT_TRUE(stream->SetText(L"<a/>"));
    EXPECT_TRUE(stream->FindElement(L"a"));
}
