#include <gtest/gtest.h>

#include "ObLibX/src/xml/document/Shifting.h"
#include "tests/unit/ObLibX/xml/document/ElementTree.h"

using namespace ObLibX;

namespace {

class SetAttribute : public testing::Test {
protected:
    // The text after x was set to 1 on the first element; the records are those of it.
    std::wstring Set(const wchar_t* text, const wchar_t* name = L"x", const wchar_t* value = L"1",
                     std::uint32_t flags = 0) {
        document_.SetText(text);
        EXPECT_TRUE(document_.SetAttribute(1, name, value, flags));
        EXPECT_EQ(document_.GetAttribute(1, name), value);
        ExpectAsIndexedAnew(document_);
        return document_.Text();
    }
    void ExpectRefused(std::int32_t position, const wchar_t* name, const wchar_t* value) {
        const std::wstring text = document_.Text();
        EXPECT_FALSE(document_.SetAttribute(position, name, value));
        EXPECT_EQ(document_.Text(), text);
        EXPECT_EQ(document_.Flags() & kDocModified, 0u);
    }

    XmlOffsetDocument document_;
};

} // namespace

TEST_F(SetAttribute, ReplacesAValueWithItsQuotes) {
    EXPECT_EQ(Set(L"<a x=\"old\"/>"), L"<a x=\"1\"/>");
    EXPECT_EQ(Set(L"<a x='o\"d' y='2'>t</a>"), L"<a x=\"1\" y='2'>t</a>");
    EXPECT_EQ(Set(L"<a y='2' x=''>t</a>"), L"<a y='2' x=\"1\">t</a>");
    EXPECT_EQ(Set(L"<a x = 'o'/>"), L"<a x = \"1\"/>");
}

TEST_F(SetAttribute, ReplacesAnUnquotedValue) {
    EXPECT_EQ(Set(L"<a x=old>t</a>"), L"<a x=\"1\">t</a>");
    EXPECT_EQ(Set(L"<a x=old/>t</a>"), L"<a x=\"1\">t</a>");
    EXPECT_EQ(Set(L"<a x=old />"), L"<a x=\"1\" />");
    EXPECT_EQ(Set(L"<a x= old y=2 />"), L"<a x= \"1\" y=2 />");
    EXPECT_EQ(Set(L"<a x==o/>t</a>"), L"<a x=\"1\">t</a>");
}

TEST_F(SetAttribute, GivesAValueToAnAttributeThatHasNone) {
    EXPECT_EQ(Set(L"<a x/>"), L"<a x=\"1\"/>");
    EXPECT_EQ(Set(L"<a x y='2'/>"), L"<a x=\"1\" y='2'/>");
    EXPECT_EQ(Set(L"<a y=2 x>t</a>"), L"<a y=2 x=\"1\">t</a>");
    EXPECT_EQ(Set(L"<a x=>t</a>"), L"<a x=\"1\">t</a>");
    EXPECT_EQ(Set(L"<a x= />"), L"<a x= \"1\"/>");
}

TEST_F(SetAttribute, AddsAfterTheLastToken) {
    EXPECT_EQ(Set(L"<a/>"), L"<a x=\"1\"/>");
    EXPECT_EQ(Set(L"<a />"), L"<a x=\"1\" />");
    EXPECT_EQ(Set(L"<a>t</a>"), L"<a x=\"1\">t</a>");
    EXPECT_EQ(Set(L"<a y='2' \r\n>t</a>"), L"<a y='2' x=\"1\" \r\n>t</a>");
    EXPECT_EQ(Set(L"<a y=2/>t</a>"), L"<a y=2/ x=\"1\">t</a>");
    EXPECT_EQ(Set(L"<a y>t</a>"), L"<a y x=\"1\">t</a>");
    EXPECT_EQ(Set(L"<a y />"), L"<a y x=\"1\" />");
    EXPECT_EQ(Set(L"<a y=2  >t</a>"), L"<a y=2 x=\"1\"  >t</a>");
    EXPECT_EQ(Set(L"<a xx='2' x2='3'/>"), L"<a xx='2' x2='3' x=\"1\"/>");
    EXPECT_EQ(Set(L"<a y='2'z=\"3\">t</a>"), L"<a y='2'z=\"3\" x=\"1\">t</a>");
    EXPECT_EQ(Set(L"<a y='2' / >t</a>"), L"<a y='2' x=\"1\" / >t</a>");
}

TEST_F(SetAttribute, AddsAfterAnUnquotedValueThatEndsWithAnEqualsSign) {
    EXPECT_EQ(Set(L"<a k=Zm9vYg==>t</a>"), L"<a k=Zm9vYg== x=\"1\">t</a>");
    EXPECT_EQ(document_.GetAttribute(1, L"k"), L"Zm9vYg==");
    EXPECT_EQ(Set(L"<a k=b= />"), L"<a k=b= x=\"1\" />");
    EXPECT_EQ(Set(L"<a k==>t</a>"), L"<a k== x=\"1\">t</a>");
    EXPECT_EQ(document_.GetAttribute(1, L"k"), L"=");
    EXPECT_EQ(Set(L"<a k='='>t</a>"), L"<a k='=' x=\"1\">t</a>");
}

TEST_F(SetAttribute, IsNotTakenForTheValueOfAnother) {
    EXPECT_EQ(Set(L"<a y=>t</a>"), L"<a x=\"1\" y=>t</a>");
    EXPECT_EQ(Set(L"<a y= />"), L"<a x=\"1\" y= />");
    EXPECT_EQ(Set(L"<a z='2' y = >t</a>"), L"<a x=\"1\" z='2' y = >t</a>");
}

TEST_F(SetAttribute, TakesTheNameUpToWhereACallersNameEnds) {
    for (const wchar_t* name : {L"x y", L"x=", L"x=\"2\"", L"x/", L"x[", L"x]", L"x >"}) {
        EXPECT_EQ(Set(L"<a x='2'/>", name), L"<a x=\"1\"/>");
        EXPECT_EQ(Set(L"<a x y/>", name), L"<a x=\"1\" y/>");
        EXPECT_EQ(Set(L"<a y='2'/>", name), L"<a y='2' x=\"1\"/>");
        EXPECT_EQ(document_.GetAttribute(1, L"x"), L"1");
    }
}

TEST_F(SetAttribute, GivesAValueToAnAttributeAfterAValueThatEndsWithAnEqualsSign) {
    EXPECT_EQ(Set(L"<a y== x>t</a>"), L"<a y== x=\"1\">t</a>");
    EXPECT_EQ(document_.GetAttribute(1, L"y"), L"=");
    EXPECT_EQ(Set(L"<a y=b= x z>t</a>"), L"<a y=b= x=\"1\" z>t</a>");
    EXPECT_EQ(document_.GetAttribute(1, L"y"), L"b=");
    EXPECT_EQ(Set(L"<a y== x='2'/>"), L"<a y== x=\"1\"/>");
}

TEST_F(SetAttribute, AddsToATagThatHasNoEnd) {
    document_.SetText(L"<r><a></r>");
    EXPECT_TRUE(document_.SetAttribute(2, L"x", L"1"));
    EXPECT_EQ(document_.Text(), L"<r><a x=\"1\"></r>");
    ExpectSoundLinks(document_.State());
}

TEST_F(SetAttribute, EncodesTheValue) {
    EXPECT_EQ(Set(L"<a/>", L"x", L"<\"'>&"), L"<a x=\"&lt;&quot;&apos;&gt;&amp;\"/>");
    EXPECT_EQ(Set(L"<a x='1'/>", L"x", L"a/"), L"<a x=\"a/\"/>");
    EXPECT_EQ(Set(L"<a x='1'/>", L"x", L""), L"<a x=\"\"/>");
    document_.SetText(L"<a/>");
    EXPECT_TRUE(document_.SetAttribute(1, L"x", L"&lt;&", kAddKeepReferences));
    EXPECT_EQ(document_.Text(), L"<a x=\"&lt;&amp;\"/>");
}

TEST_F(SetAttribute, ShiftsWhatFollows) {
    const std::wstring text = L"<r><a><b/></a><c x='22'><d/></c><e/></r>";
    for (std::int32_t position = 1; position < 7; ++position) {
        for (const wchar_t* value : {L"", L"a much longer value than it was"}) {
            document_.SetText(std::wstring_view(text));
            EXPECT_TRUE(document_.SetAttribute(position, L"x", value));
            EXPECT_EQ(document_.GetAttribute(position, L"x"), value);
            ExpectAsIndexedAnew(document_);
        }
    }
}

TEST_F(SetAttribute, IgnoresCaseWhenTheDocumentDoes) {
    document_.SetFlags(kDocIgnoreCase);
    EXPECT_EQ(Set(L"<a X='2'/>"), L"<a X=\"1\"/>");
    document_.SetFlags(0);
    EXPECT_EQ(Set(L"<a X='2'/>"), L"<a X='2' x=\"1\"/>");
}

TEST_F(SetAttribute, ChangesTheCurrentProcessingInstruction) {
    document_.SetText(L"<?xml version='1.0'?><r><a/></r>");
    document_.ResetPosition(0, 0, 0);
    PutOnNode(document_, kNodeInstruction, L"<?xml version='1.0'?>");
    EXPECT_TRUE(document_.SetAttribute(0, L"encoding", L"x"));
    EXPECT_EQ(document_.Text(), L"<?xml version='1.0' encoding=\"x\"?><r><a/></r>");
    EXPECT_EQ(document_.State().nodeLength, 34);
    ExpectAsIndexedAnew(document_);
    EXPECT_TRUE(document_.SetAttribute(0, L"version", L"1.1"));
    EXPECT_EQ(document_.GetAttribute(0, L"version"), L"1.1");
    EXPECT_EQ(document_.GetData(0), L"xml version=\"1.1\" encoding=\"x\"");
    ExpectAsIndexedAnew(document_);
}

TEST_F(SetAttribute, AddsToAnInstructionWhereItCanBeReadAgain) {
    const std::pair<const wchar_t*, const wchar_t*> expected[] = {
        {L"<?p y=?>", L"<?p x=\"1\" y=?>"},
        {L"<?p y=b=?>", L"<?p y=b= x=\"1\"?>"},
        {L"<?p y='2?>", L"<?p x=\"1\" y='2?>"},
        {L"<?p y='2' > z?>", L"<?p y='2' x=\"1\" > z?>"}};
    for (const auto& [before, after] : expected) {
        document_.SetText((std::wstring(before) + L"<r/>").c_str());
        PutOnNode(document_, kNodeInstruction, before);
        EXPECT_TRUE(document_.SetAttribute(0, L"x", L"1"));
        EXPECT_EQ(document_.Text(), std::wstring(after) + L"<r/>");
        EXPECT_EQ(document_.GetAttribute(0, L"x"), L"1");
        ExpectAsIndexedAnew(document_);
    }
}

TEST_F(SetAttribute, ChangesAnInstructionAnywhereInTheText) {
    for (const wchar_t* text : {L"<r><a/><?p?><b/></r>", L"<r><?p?></r>", L"<r><?p?><b/></r>",
                                L"<r><a><c/></a><?p?></r>"}) {
        document_.SetText(text);
        document_.ResetPosition(1, 0, 0);
        PutOnNode(document_, kNodeInstruction, L"<?p?>");
        EXPECT_TRUE(document_.SetAttribute(0, L"x", L"1"));
        EXPECT_EQ(document_.GetData(0), L"p x=\"1\"");
        ExpectAsIndexedAnew(document_);
    }
    document_.SetText(L"<?p?>");
    PutOnNode(document_, kNodeInstruction, L"<?p?>");
    EXPECT_TRUE(document_.SetAttribute(0, L"x", L"1"));
    EXPECT_EQ((*document_.State().records)[0].length, 11u);
}

TEST_F(SetAttribute, RefusesAnInstructionWithoutATarget) {
    for (const wchar_t* node : {L"<? ?>", L"<?=p ='y?>", L"<? /?>"}) {
        document_.SetText((std::wstring(node) + L"<r/>").c_str());
        PutOnNode(document_, kNodeInstruction, node);
        EXPECT_FALSE(document_.SetAttribute(0, L"x", L"1"));
        EXPECT_EQ(document_.Text(), std::wstring(node) + L"<r/>");
    }
}

TEST_F(SetAttribute, RefusesWhatItCannotWrite) {
    document_.SetText(L"<a y='1'/>");
    ExpectRefused(1, nullptr, L"1");
    ExpectRefused(1, L"x", nullptr);
    for (const wchar_t* name : {L"", L" ", L" x", L"=x", L"[x", L"x>", L"x?", L"x\"", L"x'", L"<x",
                                L"x\n", L"x;", L"x! y"}) {
        ExpectRefused(1, name, L"1");
    }
    for (const std::int32_t position : {-1, 0, 2, 9, 0x7FFFFFFF})
        ExpectRefused(position, L"x", L"1");
    PutOnNode(document_, kNodeText, L"y='1'");
    ExpectRefused(0, L"x", L"1");
    document_.ResetPosition(0, 0, 0);
    document_.State().docFlags |= kDocStreamRead;
    ExpectRefused(1, L"x", L"1");
    document_.State().docFlags &= ~kDocStreamRead;
}

TEST_F(SetAttribute, RefusesAValueThatMakesTheStartTagTooLong) {
    document_.SetText(L"<a/>");
    const std::wstring longest(kLongestStartTag - 9, L'v'); // <a x=""/>
    ExpectRefused(1, L"x", (longest + L"v").c_str());
    EXPECT_TRUE(document_.SetAttribute(1, L"x", longest.c_str()));
    EXPECT_EQ((*document_.State().records)[1].StartTagLength(), kLongestStartTag);
    ExpectAsIndexedAnew(document_);
}

TEST_F(SetAttribute, RefusesToTouchATagThatIsTooLong) {
    const std::wstring blanks(kLongestStartTag, L' ');
    document_.SetText(std::wstring_view(L"<a" + blanks + L"/>"));
    ExpectRefused(1, L"x", L"1");
}

TEST(Splice, GrowsByHalfAndSomeWhenTheCapacityIsPassed) {
    XmlOffsetDocument document;
    const std::wstring text(1000, L'x');
    document.SetText(std::wstring_view(text));
    DocumentState& state = document.State();
    const std::size_t room = state.text.capacity() - state.text.size();
    const std::wstring added(room + 1, L'y');
    Splice(state, 500, 0, added.data(), added.size());
    const std::size_t length = 1000 + room + 1;
    EXPECT_EQ(state.text, text.substr(500) + added + text.substr(500));
    EXPECT_EQ(state.text.capacity(), length + length / 2 + 128);
    const wchar_t* const place = state.text.data();
    Splice(state, 0, 1000, L"abc", 3);
    EXPECT_EQ(state.text.data(), place);
    EXPECT_EQ(state.text.substr(0, 3), L"abc");
    EXPECT_NE(state.docFlags & kDocModified, 0u);
}

TEST(Adjust, MovesWhatFollowsAndGrowsWhatContains) {
    XmlOffsetDocument document;
    document.SetText(L"<r><a><b/></a><c><d/></c></r>");
    const ElementRecordTable& records = *document.State().records;
    Adjust(document.State(), 2, 10, true);
    EXPECT_EQ(records[2].start, 3u);
    EXPECT_EQ(records[2].length, 11u);
    EXPECT_EQ(records[3].start, 6u);
    EXPECT_EQ(records[4].start, 24u);
    EXPECT_EQ(records[4].length, 11u);
    EXPECT_EQ(records[5].start, 27u);
    EXPECT_EQ(records[1].length, 39u);
    EXPECT_EQ(records[1].start, 0u);
    EXPECT_EQ(records[0].length, 39u);
    Adjust(document.State(), 2, -10, false);
    EXPECT_EQ(records[3].start, 6u - 10u);
    EXPECT_EQ(records[2].length, 11u);
    EXPECT_EQ(records[5].start, 17u);
    EXPECT_EQ(records[0].length, 29u);
}
