#include <gtest/gtest.h>

#include "tests/unit/ObLibX/xml/document/ElementTree.h"
#include "tests/unit/ObLibX/xml/stream/StreamFiles.h"

using namespace ObLibX;

namespace {

class AddElement : public testing::Test {
protected:
    void Load(const wchar_t* text) { document_.SetText(text); }
    void MoveTo(std::int32_t parent, std::int32_t current, std::int32_t child = 0) {
        document_.ResetPosition(parent, current, child);
    }
    bool Add(const wchar_t* name, const wchar_t* value, std::uint32_t flags) {
        return document_.AddElement(name, value, flags);
    }
    // Adds <n/> from the position; the text then, with the records those of it.
    std::wstring Added(std::uint32_t flags) {
        EXPECT_TRUE(Add(L"n", nullptr, flags));
        ExpectAsIndexedAnew(document_);
        const std::int32_t added =
            (flags & kAddAsChild) != 0 ? document_.ChildPosition() : document_.CurrentPosition();
        EXPECT_EQ(document_.Text().substr((*document_.State().records)[added].start, 2), L"<n");
        return document_.Text();
    }
    void ExpectRefused(const wchar_t* name, const wchar_t* value, std::uint32_t flags) {
        const std::wstring text = document_.Text();
        const std::uint32_t docFlags = document_.Flags();
        const std::int32_t next = document_.State().nextFreePos;
        EXPECT_FALSE(Add(name, value, flags));
        EXPECT_EQ(document_.Text(), text);
        EXPECT_EQ(document_.Flags(), docFlags);
        EXPECT_EQ(document_.State().nextFreePos, next);
    }
    // The text of one element added to an empty document without line ends.
    std::wstring Written(const wchar_t* name, const wchar_t* value, std::uint32_t flags = 0) {
        document_.SetText(nullptr);
        EXPECT_TRUE(Add(name, value, flags | kAddNoLineEnds));
        return document_.Text();
    }

    XmlOffsetDocument document_;
};

} // namespace

// One slash that stayed would make an empty tag of the new element's parent.
TEST_F(AddElement, TakesEverySlashFromTheEndOfASingleTagThatItOpens) {
    const struct {
        const wchar_t* before;
        const wchar_t* after;
    } cases[] = {
        {L"<r//>", L"<r><n/></r>"},
        {L"<r ///>", L"<r ><n/></r>"},
        {L"<r x='1'//>", L"<r x='1'><n/></r>"},
        {L"<r x=b/ />", L"<r x=b/ ><n/></r>"},
    };
    for (const auto& [before, after] : cases) {
        Load(before);
        MoveTo(0, 1);
        EXPECT_EQ(Added(kAddAsChild | kAddNoLineEnds), after);
    }
}

TEST_F(AddElement, WritesAnElementByItsFlags) {
    EXPECT_EQ(Written(L"a", nullptr), L"<a/>");
    EXPECT_EQ(Written(L"a", L""), L"<a/>");
    EXPECT_EQ(Written(L"a", nullptr, kAddBlankInEmpty), L"<a />");
    EXPECT_EQ(Written(L"a", nullptr, kAddNoEndTag), L"<a>");
    EXPECT_EQ(Written(L"a", L"x<&lt;>\"'"), L"<a>x&lt;&amp;lt;&gt;\"'</a>");
    EXPECT_EQ(Written(L"a", L"x<&lt;&", kAddKeepReferences), L"<a>x&lt;&lt;&amp;</a>");
    EXPECT_EQ(Written(L"a", L"x<&", kAddCdata), L"<a><![CDATA[x<&]]></a>");
    EXPECT_EQ(Written(L"a", L"x", kAddBlankInEmpty), L"<a>x</a>");
}

TEST_F(AddElement, SplitsACdataSectionWhereTheValueContainsItsEnd) {
    EXPECT_EQ(Written(L"a", L"a]]>b", kAddCdata), L"<a><![CDATA[a]]]]><![CDATA[>b]]></a>");
    for (const wchar_t* value :
         {L"a]]>b", L"]]>", L"]]>]]>", L"]]]>", L"x]]", L"x]", L"]>", L">"}) {
        Written(L"a", value, kAddCdata);
        EXPECT_EQ(document_.GetData(1), value);
        ExpectAsIndexedAnew(document_);
    }
}

TEST_F(AddElement, FillsTheRecord) {
    Written(L"abc", L"x");
    const ElementRecord& record = (*document_.State().records)[1];
    EXPECT_EQ(record.start, 0u);
    EXPECT_EQ(record.length, 12u);
    EXPECT_EQ(record.StartTagLength(), 5u);
    EXPECT_EQ(record.EndTagLength(), 6u);
    EXPECT_EQ(record.Level(), 1u);
    Written(L"abc", nullptr, kAddBlankInEmpty);
    EXPECT_EQ((*document_.State().records)[1].tagLengths, 7u);
    EXPECT_FALSE((*document_.State().records)[1].Has(kRecordUnended));
    Written(L"abc", nullptr, kAddNoEndTag);
    EXPECT_EQ((*document_.State().records)[1].tagLengths, 5u);
    EXPECT_TRUE((*document_.State().records)[1].Has(kRecordUnended));
}

TEST_F(AddElement, MakesTheNewElementCurrent) {
    Load(L"<a><b/></a>");
    MoveTo(1, 2);
    EXPECT_TRUE(Add(L"c", nullptr, 0));
    EXPECT_EQ(document_.ParentPosition(), 1);
    EXPECT_EQ(document_.CurrentPosition(), 3);
    EXPECT_EQ(document_.ChildPosition(), 0);
    EXPECT_EQ(document_.State().nodeType, kNodeElement);
    EXPECT_TRUE(Add(L"d", nullptr, kAddAsChild));
    EXPECT_EQ(document_.ParentPosition(), 1);
    EXPECT_EQ(document_.CurrentPosition(), 3);
    EXPECT_EQ(document_.ChildPosition(), 4);
    EXPECT_EQ(document_.State().nodeType, kNodeElement);
    EXPECT_TRUE((document_.Flags() & kDocModified) != 0);
}

TEST_F(AddElement, PutsALineEndAfterTheElementInAnEmptyDocument) {
    EXPECT_EQ(Added(0), L"<n/>\r\n");
    EXPECT_TRUE(Add(L"m", nullptr, 0));
    EXPECT_EQ(document_.Text(), L"<n/>\r\n<m/>\r\n");
    ExpectAsIndexedAnew(document_);
}

TEST_F(AddElement, AddsAfterTheCurrentElementAndItsWhiteSpace) {
    Load(L"<r>\r\n<a/>\r\n<b/>\r\n</r>");
    MoveTo(1, 2);
    EXPECT_EQ(Added(0), L"<r>\r\n<a/>\r\n<n/>\r\n<b/>\r\n</r>");
    Load(L"<r>\r\n<a/>\r\n<b/>\r\n</r>");
    MoveTo(1, 3);
    EXPECT_EQ(Added(0), L"<r>\r\n<a/>\r\n<b/>\r\n<n/>\r\n</r>");
    Load(L"<r/>  ");
    MoveTo(0, 1);
    EXPECT_EQ(Added(0), L"<r/>  <n/>\r\n");
    Load(L"<r><a/> text</r>");
    MoveTo(1, 2);
    EXPECT_EQ(Added(0), L"<r><a/><n/>\r\n text</r>");
}

TEST_F(AddElement, SkipsNoWhiteSpaceWithoutLineEnds) {
    Load(L"<r><a/>\r\n<b/></r>");
    MoveTo(1, 2);
    EXPECT_EQ(Added(kAddNoLineEnds), L"<r><a/><n/>\r\n<b/></r>");
}

TEST_F(AddElement, AddsBeforeTheCurrentElement) {
    Load(L"<r> <a/><b/></r>");
    MoveTo(1, 2);
    EXPECT_EQ(Added(kAddBefore), L"<r> <n/>\r\n<a/><b/></r>");
    Load(L"<r> <a/><b/></r>");
    MoveTo(1, 3);
    EXPECT_EQ(Added(kAddBefore | kAddNoLineEnds), L"<r> <a/><n/><b/></r>");
}

TEST_F(AddElement, AddsAtTheEndOfTheContentAndLinksLastWithoutACurrentElement) {
    Load(L"<r><a/>text</r>");
    MoveTo(1, 0);
    EXPECT_EQ(Added(0), L"<r><a/>text<n/>\r\n</r>");
    EXPECT_EQ((*document_.State().records)[2].next, 3u);
    EXPECT_EQ((*document_.State().records)[2].prev, 3u);
    Load(L"<a/>");
    MoveTo(0, 0);
    EXPECT_EQ(Added(0), L"<a/><n/>\r\n");
}

TEST_F(AddElement, AddsAtTheStartOfTheContentWithItsFlag) {
    for (const std::uint32_t flag : {kAddAtStart, kAddBefore}) {
        Load(L"<r>text<a/></r>");
        MoveTo(1, 0);
        EXPECT_EQ(Added(flag), L"<r><n/>\r\ntext<a/></r>");
        EXPECT_EQ((*document_.State().records)[1].firstChild, 3u);
    }
    Load(L"<r> <a/></r>");
    MoveTo(1, 0);
    EXPECT_EQ(Added(kAddAtStart), L"<r><n/>\r\n <a/></r>");
    Load(L"<r> <a/></r>");
    MoveTo(1, 0);
    EXPECT_EQ(Added(kAddBefore), L"<r> <n/>\r\n<a/></r>");
    Load(L"<r>t<a/><b/></r>");
    MoveTo(1, 3);
    EXPECT_EQ(Added(kAddAtStart | kAddNoLineEnds), L"<r><n/>t<a/><b/></r>");
    Load(L"<!--c--><r/>");
    MoveTo(0, 0);
    EXPECT_EQ(Added(kAddAtStart), L"<n/>\r\n<!--c--><r/>");
}

TEST_F(AddElement, BecomesAChildOfTheCurrentElement) {
    Load(L"<r><a>x</a></r>");
    MoveTo(1, 2);
    EXPECT_EQ(Added(kAddAsChild), L"<r><a>x<n/>\r\n</a></r>");
    EXPECT_TRUE(Add(L"m", nullptr, kAddAsChild | kAddNoLineEnds));
    EXPECT_EQ(document_.Text(), L"<r><a>x<n/><m/>\r\n</a></r>");
    EXPECT_TRUE(Add(L"l", nullptr, kAddAsChild | kAddBefore | kAddNoLineEnds));
    EXPECT_EQ(document_.Text(), L"<r><a>x<n/><l/><m/>\r\n</a></r>");
    ExpectAsIndexedAnew(document_);
}

TEST_F(AddElement, OpensASingleTag) {
    Load(L"<p/>");
    MoveTo(0, 1);
    EXPECT_EQ(Added(kAddAsChild), L"<p>\r\n<n/>\r\n</p>");
    Load(L"<p/>");
    MoveTo(0, 1);
    EXPECT_EQ(Added(kAddAsChild | kAddNoLineEnds), L"<p><n/></p>");
    Load(L"<r><p a='/' /><q/></r>");
    MoveTo(2, 0);
    EXPECT_EQ(Added(0), L"<r><p a='/' >\r\n<n/>\r\n</p><q/></r>");
    for (const std::uint32_t flag : {kAddAtStart, kAddBefore}) {
        Load(L"<p/>");
        MoveTo(1, 0);
        EXPECT_EQ(Added(flag), L"<p>\r\n<n/>\r\n</p>");
    }
}

// A fresh parse of the text reports the child, marks what is around it and stops after </r>.
TEST_F(AddElement, MarksOnlyTheElementItselfWhenItHasNoEndTag) {
    Load(L"<t><r></r><s/></t>");
    MoveTo(1, 2);
    EXPECT_TRUE(Add(L"c", nullptr, kAddAsChild | kAddNoEndTag | kAddNoLineEnds));
    EXPECT_EQ(document_.Text(), L"<t><r><c></r><s/></t>");
    ExpectSoundLinks(document_.State());
    const ElementRecordTable& records = *document_.State().records;
    EXPECT_TRUE(records[document_.ChildPosition()].Has(kRecordUnended));
    EXPECT_FALSE(records[0].Has(kRecordBad));
    EXPECT_FALSE(records[2].Has(kRecordBadBelow));
    EXPECT_EQ(records[3].start, 13u);

    XmlOffsetDocument parsed;
    EXPECT_FALSE(parsed.SetText(std::wstring_view(document_.Text())));
    EXPECT_EQ(parsed.State().nextFreePos, 4); // t, r and c
    EXPECT_TRUE((*parsed.State().records)[2].Has(kRecordBadBelow));
}

TEST_F(AddElement, OpensATagThatHasNoEnd) {
    EXPECT_TRUE(Add(L"p", nullptr, kAddNoEndTag | kAddNoLineEnds));
    EXPECT_EQ(Added(kAddAsChild), L"<p>\r\n<n/>\r\n</p>");
    EXPECT_FALSE((*document_.State().records)[1].Has(kRecordUnended));
    Load(L"<r><p></r>");
    MoveTo(1, 2);
    EXPECT_TRUE(Add(L"n", nullptr, kAddAsChild | kAddNoLineEnds));
    EXPECT_EQ(document_.Text(), L"<r><p><n/></p></r>");
    EXPECT_FALSE((*document_.State().records)[2].Has(kRecordUnended));
    ExpectSoundLinks(document_.State());
}

TEST_F(AddElement, OpensATagOverItsWholeName) {
    Load(L"<p;q x='1'/>"); // such a name is one name to a scan
    MoveTo(0, 1);
    EXPECT_EQ(Added(kAddAsChild | kAddNoLineEnds), L"<p;q x='1'><n/></p;q>");
}

TEST_F(AddElement, PutsALineEndBeforeTheFirstContent) {
    Load(L"<p></p>");
    MoveTo(1, 0);
    EXPECT_EQ(Added(0), L"<p>\r\n<n/>\r\n</p>");
    Load(L"<p></p>");
    MoveTo(1, 0);
    EXPECT_EQ(Added(kAddNoLineEnds), L"<p><n/></p>");
    Load(L"<p> </p>");
    MoveTo(1, 0);
    EXPECT_EQ(Added(0), L"<p> <n/>\r\n</p>");
}

TEST_F(AddElement, AddsAfterTheCurrentNode) {
    Load(L"<r><a/><!--c--><b/></r>");
    MoveTo(1, 2);
    PutOnNode(document_, kNodeComment, L"<!--c-->");
    EXPECT_EQ(Added(0), L"<r><a/><!--c--><n/>\r\n<b/></r>");
    EXPECT_EQ(document_.State().nodeLength, 0);
    Load(L"<r><a/><!--c-->  <b/></r>");
    MoveTo(1, 0); // any position from which the client moved to the node
    PutOnNode(document_, kNodeComment, L"<!--c-->");
    EXPECT_EQ(Added(0), L"<r><a/><!--c-->  <n/>\r\n<b/></r>");
}

TEST_F(AddElement, AddsBeforeTheCurrentNode) {
    Load(L"<r><!--c--><b/></r>");
    MoveTo(1, 0);
    PutOnNode(document_, kNodeComment, L"<!--c-->");
    EXPECT_EQ(Added(kAddBefore), L"<r><n/>\r\n<!--c--><b/></r>");
}

TEST_F(AddElement, ReplacesTheCurrentNode) {
    Load(L"<r><a/><!--comment--> <b/></r>");
    MoveTo(1, 2);
    PutOnNode(document_, kNodeComment, L"<!--comment-->");
    EXPECT_EQ(Added(kAddAtStart), L"<r><a/><n/>\r\n <b/></r>");
    Load(L"<r>x<b/></r>");
    MoveTo(1, 0);
    PutOnNode(document_, kNodeText, L"x");
    EXPECT_EQ(Added(kAddAtStart | kAddNoLineEnds), L"<r><n/><b/></r>");
}

TEST_F(AddElement, RefusesWhatItCannotWrite) {
    Load(L"<r><a/></r>");
    MoveTo(1, 2);
    ExpectRefused(nullptr, L"x", 0);
    for (const wchar_t* name : {L"",   L" ",   L"a b", L"1a",   L"-a", L".a", L"a>",  L"<a", L"a/",
                                L"a=", L"a\"", L"a'",  L"a;",   L"a?", L"a!", L"a\\", L"a[", L"a]",
                                L"@a", L"^a",  L"`a",  L"a\tb", L"/",  L"?a", L"!a"}) {
        ExpectRefused(name, nullptr, 0);
    }
    ExpectRefused(L"a", L"x", kAddNoEndTag);
    for (const wchar_t* name : {L"a1", L"_a", L":a", L"a-b.c:d", L"\xE4", L"a^", L"a@", L"a&"}) {
        EXPECT_TRUE(Add(name, L"x", 0));
        ExpectAsIndexedAnew(document_);
        EXPECT_TRUE(document_.FindElement((L"/r/" + std::wstring(name)).c_str()));
    }
}

TEST_F(AddElement, RefusesAChildOfNothing) {
    Load(L"<r/>");
    MoveTo(0, 0);
    ExpectRefused(L"a", nullptr, kAddAsChild);
    MoveTo(0, 1);
    PutOnNode(document_, kNodeText, L"r");
    ExpectRefused(L"a", nullptr, kAddAsChild);
}

TEST_F(AddElement, RefusesPositionsThatDoNotBelongTogether) {
    Load(L"<r><a><b/></a></r>");
    MoveTo(1, 3);
    ExpectRefused(L"n", nullptr, 0);
    MoveTo(0, 1, 3);
    ExpectRefused(L"n", nullptr, kAddAsChild);
    for (const std::int32_t position : {-1, 4, 0x7FFFFFFF}) {
        MoveTo(position, 0);
        ExpectRefused(L"n", nullptr, 0);
        MoveTo(0, position);
        ExpectRefused(L"n", nullptr, 0);
    }
}

TEST_F(AddElement, RefusesInStreamReading) {
    const StreamFile file(L"<r><a/></r>", L"UTF-8");
    ASSERT_TRUE(document_.OpenForReading(file.Path()));
    ASSERT_TRUE(document_.FindElement());
    ExpectRefused(L"n", nullptr, 0);
    ExpectRefused(L"n", nullptr, kAddAsChild);
    EXPECT_FALSE(document_.SetAttribute(document_.CurrentPosition(), L"x", L"1"));
    EXPECT_FALSE(document_.FindChildElement());
}

TEST_F(AddElement, RefusesAChildInStreamWriting) {
    const StreamFile file;
    ASSERT_TRUE(document_.OpenForWriting(file.Path()));
    ASSERT_TRUE(Add(L"r", nullptr, 0));
    ExpectRefused(L"n", nullptr, kAddAsChild);
    EXPECT_FALSE(document_.FindElement());
    EXPECT_FALSE(document_.FindChildElement());
}

TEST_F(AddElement, RefusesANameThatMakesTheEndTagTooLong) {
    const std::wstring longest(1020, L'a');
    const std::wstring tooLong(1021, L'a');
    Load(L"<r/>");
    MoveTo(1, 0);
    ExpectRefused(tooLong.c_str(), L"x", 0);
    EXPECT_TRUE(Add(longest.c_str(), L"x", 0));
    ExpectAsIndexedAnew(document_);
    EXPECT_TRUE(Add(tooLong.c_str(), nullptr, 0)); // it has no end tag,
    ExpectAsIndexedAnew(document_);
    ExpectRefused(L"n", nullptr, kAddAsChild); // and so it can't be opened
    EXPECT_TRUE(Add(longest.c_str(), nullptr, 0));
    EXPECT_TRUE(Add(L"n", nullptr, kAddAsChild));
    ExpectAsIndexedAnew(document_);
}

TEST_F(AddElement, RefusesANameThatMakesTheStartTagTooLong) {
    const std::wstring longest(kLongestStartTag - 3, L'a');
    const std::wstring tooLong = longest + L"a";
    ExpectRefused(tooLong.c_str(), nullptr, 0);
    ExpectRefused(longest.c_str(), nullptr, kAddBlankInEmpty);
    EXPECT_TRUE(Add(longest.c_str(), nullptr, 0));
    ExpectAsIndexedAnew(document_);
}

TEST_F(AddElement, RefusesToTouchAnElementWhoseTagIsTooLong) {
    const std::wstring blanks(kLongestStartTag, L' ');
    document_.SetText(std::wstring_view(L"<r><a" + blanks + L"/><b/></r>"));
    MoveTo(1, 2);
    ExpectRefused(L"n", nullptr, 0);
    ExpectRefused(L"n", nullptr, kAddAsChild);
    MoveTo(1, 3);
    EXPECT_TRUE(Add(L"n", nullptr, 0));
    ExpectSoundLinks(document_.State());
}

TEST_F(AddElement, StaysSoundInATextThatIsBadlyFormed) {
    for (const wchar_t* text :
         {L"<a><b></a>", L"<a></b>", L"<r><a><b></a><c/></r>", L"<a>text", L"<a><b><c></c>", L"<a",
          L"</a>", L"text", L"<1>", L"<a><1></a>", L"<a><b></b></c>tail", L"<!DOCTYPE"}) {
        for (const std::uint32_t flags :
             {0u, kAddNoLineEnds, kAddBefore, kAddAtStart, kAddAsChild, kAddAsChild | kAddBefore}) {
            Load(text);
            const std::int32_t elements = document_.State().nextFreePos;
            for (std::int32_t at = 0; at < elements; ++at) {
                Load(text);
                const std::uint32_t parent = (*document_.State().records)[at].parent;
                MoveTo(static_cast<std::int32_t>(parent), at);
                if (at == 0 && (flags & kAddAsChild) != 0) continue;
                EXPECT_TRUE(Add(L"n", L"v", flags)) << Narrow(text) << " at " << at;
                ExpectSoundLinks(document_.State());
            }
        }
    }
}

TEST_F(AddElement, AddsTwoHundredThousandSiblings) {
    constexpr std::int32_t kCount = 200000;
    Load(L"<r/>");
    MoveTo(1, 0);
    for (std::int32_t i = 0; i < kCount; ++i) ASSERT_TRUE(Add(L"n", nullptr, kAddNoLineEnds));
    EXPECT_EQ(document_.CurrentPosition(), kCount + 1);
    ExpectAsIndexedAnew(document_);
}

TEST_F(AddElement, KeepsTheDeepestLevelFromTheFlags) {
    constexpr std::size_t kDepth = 70000;
    std::wstring text;
    for (std::size_t i = 0; i < kDepth; ++i) text += L"<a>";
    for (std::size_t i = 0; i < kDepth; ++i) text += L"</a>";
    document_.SetText(std::wstring_view(text));
    MoveTo(static_cast<std::int32_t>(kDepth), 0);
    EXPECT_TRUE(Add(L"n", nullptr, 0));
    EXPECT_EQ((*document_.State().records)[document_.CurrentPosition()].Level(), 0xFFFFu);
    ExpectAsIndexedAnew(document_);
}

TEST_F(AddElement, MovesATextOfTwoToThe27thUnits) {
    constexpr std::size_t kLength = std::size_t{1} << 27;
    std::wstring text(kLength, L'x');
    text.replace(0, 7, L"<r><a/>");
    text.replace(kLength - 8, 8, L"<b/></r>");
    ASSERT_TRUE(document_.SetText(std::wstring_view(text)));
    std::wstring().swap(text);
    MoveTo(1, 2);
    EXPECT_TRUE(Add(L"n", L"v", kAddNoLineEnds));
    EXPECT_TRUE(document_.SetAttribute(1, L"k", L"w"));
    const ElementRecordTable& records = *document_.State().records;
    EXPECT_EQ(document_.Text().size(), kLength + 14);
    EXPECT_EQ(records[0].length, kLength + 14);
    EXPECT_EQ(records[1].length, kLength + 14);
    EXPECT_EQ(records[3].start, kLength - 8 + 14);
    EXPECT_TRUE(document_.FindElement(L"b"));
    EXPECT_EQ(document_.GetTagName(), L"b");
}
