#include <gtest/gtest.h>

#include "ObLibX/src/xml/document/ElementText.h"
#include "tests/unit/ObLibX/xml/document/ElementTree.h"

using namespace ObLibX;

namespace {

class Reading : public testing::Test {
protected:
    // Moves to the root element, whose record is 1.
    void Load(const wchar_t* text) {
        document_.SetText(text);
        document_.FindElement();
    }
    std::wstring Attribute(const wchar_t* name) { return document_.GetAttribute(1, name); }
    std::wstring Data() { return document_.GetData(1); }
    std::wstring NodeData() { return document_.GetData(document_.CurrentPosition()); }

    XmlOffsetDocument document_;
};

} // namespace

TEST_F(Reading, NamesTheCurrentElement) {
    EXPECT_EQ(document_.GetTagName(), L"");
    Load(L"<name a='1'/>");
    EXPECT_EQ(document_.GetTagName(), L"name");
    document_.ResetPosition(0, 0, 0);
    EXPECT_EQ(document_.GetTagName(), L"");
    Load(L"<x:y.z-1></x:y.z-1>");
    EXPECT_EQ(document_.GetTagName(), L"x:y.z-1");
    Load(L"<a/>");
    EXPECT_EQ(document_.GetTagName(), L"a");
    Load(L"<a;b/>"); // a name token ends there
    EXPECT_EQ(document_.GetTagName(), L"a");
}

TEST_F(Reading, NamesNodesByTheirKind) {
    Load(L"<r>text <!--c--><![CDATA[d]]><?target x='1'?> </r></lone >");
    PutOnNode(document_, kNodeText, L"text ");
    EXPECT_EQ(document_.GetTagName(), L"#text");
    PutOnNode(document_, kNodeSpace, L" ");
    EXPECT_EQ(document_.GetTagName(), L"#text");
    PutOnNode(document_, kNodeComment, L"<!--c-->");
    EXPECT_EQ(document_.GetTagName(), L"#comment");
    PutOnNode(document_, kNodeCdata, L"<![CDATA[d]]>");
    EXPECT_EQ(document_.GetTagName(), L"#cdata-section");
    PutOnNode(document_, kNodeInstruction, L"<?target x='1'?>");
    EXPECT_EQ(document_.GetTagName(), L"target");
    PutOnNode(document_, kNodeLoneEndTag, L"</lone >");
    EXPECT_EQ(document_.GetTagName(), L"lone");
    PutOnNode(document_, kNodeError, L"<r>");
    EXPECT_EQ(document_.GetTagName(), L"");
}

TEST_F(Reading, NamesADocumentTypeByTheTokenAfterItsKeyword) {
    Load(L"<!DOCTYPE html SYSTEM 'x'><html/>");
    PutOnNode(document_, kNodeDocType, L"<!DOCTYPE html SYSTEM 'x'>");
    EXPECT_EQ(document_.GetTagName(), L"html");
    Load(L"<!DOCTYPE><a/>");
    PutOnNode(document_, kNodeDocType, L"<!DOCTYPE>");
    EXPECT_EQ(document_.GetTagName(), L"");
}

TEST_F(Reading, FindsAttributesHoweverTheyAreWritten) {
    Load(L"<a b=\"1\" c='2' d=3 e = \"4\"\tf\r\n=\r\n'5' g='' h=\"'\" i='\"' jj=\">\"/>");
    const std::pair<const wchar_t*, const wchar_t*> expected[] = {
        {L"b", L"1"}, {L"c", L"2"}, {L"d", L"3"},  {L"e", L"4"},  {L"f", L"5"},
        {L"g", L""},  {L"h", L"'"}, {L"i", L"\""}, {L"jj", L">"}, {L"j", L""},
        {L"B", L""},  {L"", L""},   {L"z", L""},   {L"a", L""}};
    for (const auto& [name, value] : expected) EXPECT_EQ(Attribute(name), value);
}

TEST_F(Reading, GivesAnAttributeWithoutAValueItsOwnName) {
    Load(L"<a b c=\"1\">x</a>");
    EXPECT_EQ(Attribute(L"b"), L"b");
    EXPECT_EQ(Attribute(L"c"), L"1");
    Load(L"<a b/>");
    EXPECT_EQ(Attribute(L"b"), L"b");
}

TEST_F(Reading, KeepsTheSlashOfAnUnquotedValue) {
    Load(L"<a href=x/>");
    EXPECT_EQ(Attribute(L"href"), L"x/");
    Load(L"<a href=x/y z=1 />");
    EXPECT_EQ(Attribute(L"href"), L"x/y");
    EXPECT_EQ(Attribute(L"z"), L"1");
}

TEST_F(Reading, DecodesAttributesAndTrimsThemByTheDocumentsFlags) {
    Load(L"<a b=' &lt;&#65;&quot;  &nosuch; '/>");
    EXPECT_EQ(Attribute(L"b"), L" <A\"  &nosuch; ");
    document_.SetFlags(kDocTrim);
    EXPECT_EQ(Attribute(L"b"), L"<A\"  &nosuch;");
    document_.SetFlags(kDocCollapse);
    EXPECT_EQ(Attribute(L"b"), L"<A\" &nosuch;");
}

TEST_F(Reading, EndsTheCallersAttributeNameAsAPathDoes) {
    Load(L"<a b='1' c='2'/>");
    EXPECT_EQ(Attribute(L"b c"), L"1");
    EXPECT_EQ(Attribute(L"b=c"), L"1");
    EXPECT_EQ(Attribute(L"b]"), L"1");
    EXPECT_EQ(Attribute(L"bc"), L"");
}

TEST_F(Reading, FindsAttributesIgnoringCaseWhenTheDocumentDoes) {
    document_.SetFlags(kDocIgnoreCase);
    Load(L"<a Bc='1'/>");
    EXPECT_EQ(Attribute(L"bC"), L"1");
}

TEST_F(Reading, LooksForAttributesInNoTagButTheElementsOwn) {
    Load(L"<a><b c='1'/></a>");
    EXPECT_EQ(Attribute(L"c"), L"");
    EXPECT_EQ(document_.GetAttribute(2, L"c"), L"1");
}

TEST_F(Reading, GivesNothingWhereThereIsNoElement) {
    Load(L"<a b='1'>x</a>");
    for (const std::int32_t position : {-1, 0, 2, 5, 100000, 0x7FFFFFFF}) {
        EXPECT_EQ(document_.GetAttribute(position, L"b"), L"");
        EXPECT_EQ(document_.GetData(position), L"");
    }
    EXPECT_EQ(Attribute(nullptr), L"");
    document_.ResetPosition(0, 0, 0);
    EXPECT_EQ(document_.GetAttributeNameAt(0), L"");
    (*document_.State().records)[1].flagsAndLevel |= kRecordFree;
    EXPECT_EQ(Attribute(L"b"), L"");
}

TEST_F(Reading, EnumeratesAttributeNamesUndecoded) {
    Load(L"<a Bee='x=y' c d = 3 e=\"f g\"/>");
    const wchar_t* const expected[] = {L"Bee", L"c", L"d", L"e", L"", L""};
    std::int32_t index = 0;
    for (const wchar_t* name : expected) EXPECT_EQ(document_.GetAttributeNameAt(index++), name);
    EXPECT_EQ(document_.GetAttributeNameAt(-1), L"");
    EXPECT_EQ(document_.GetAttributeNameAt(0x7FFFFFFF), L"");
    Load(L"<a/>");
    EXPECT_EQ(document_.GetAttributeNameAt(0), L"");
}

TEST_F(Reading, ReadsAttributesOfTheCurrentProcessingInstruction) {
    Load(L"<?xml version=\"1.0\" encoding='x' standalone=yes?><a version='2'/>");
    document_.ResetPosition(0, 0, 0);
    PutOnNode(document_, kNodeInstruction, L"<?xml version=\"1.0\" encoding='x' standalone=yes?>");
    EXPECT_EQ(document_.GetAttribute(0, L"version"), L"1.0");
    EXPECT_EQ(document_.GetAttribute(0, L"encoding"), L"x");
    EXPECT_EQ(document_.GetAttribute(0, L"standalone"), L"yes");
    EXPECT_EQ(document_.GetAttribute(0, L"xml"), L"");
    EXPECT_EQ(document_.GetAttribute(1, L"version"), L"2");
    EXPECT_EQ(document_.GetAttributeNameAt(0), L"version");
    EXPECT_EQ(document_.GetAttributeNameAt(2), L"standalone");
    EXPECT_EQ(document_.GetAttributeNameAt(3), L"");
}

TEST_F(Reading, ReadsNoAttributesOfOtherNodes) {
    Load(L"<!--a b='1'--><a/>");
    document_.ResetPosition(0, 0, 0);
    PutOnNode(document_, kNodeComment, L"<!--a b='1'-->");
    EXPECT_EQ(document_.GetAttribute(0, L"b"), L"");
    EXPECT_EQ(document_.GetAttributeNameAt(0), L"");
    PutOnNode(document_, kNodeInstruction, L"<!-");
    EXPECT_EQ(document_.GetAttribute(0, L"b"), L"");
}

TEST_F(Reading, DecodesDataThatContainsNoTag) {
    Load(L"<a> x &lt; y </a>");
    EXPECT_EQ(Data(), L" x < y ");
    document_.SetFlags(kDocTrim);
    EXPECT_EQ(Data(), L"x < y");
    Load(L"<a> </a>");
    EXPECT_EQ(Data(), L"");
}

TEST_F(Reading, GivesNoDataWithoutContentOrWithChildren) {
    for (const wchar_t* text : {L"<a/>", L"<a></a>", L"<a>x<b/>y</a>", L"<a b='1'/>"}) {
        Load(text);
        EXPECT_EQ(Data(), L"");
    }
}

TEST_F(Reading, JoinsTextAndRawSections) {
    Load(L"<a>x&amp;<![CDATA[&amp;<y>]]>z<!--no--><?no?><![CDATA[]]>!</a>");
    EXPECT_EQ(Data(), L"x&&amp;<y>z!");
    Load(L"<a>\r\n<![CDATA[x]]>\r\n</a>"); // white space alone is no text
    EXPECT_EQ(Data(), L"x");
    Load(L"<a><![CDATA[a]]]]><![CDATA[>b]]></a>");
    EXPECT_EQ(Data(), L"a]]>b");
    Load(L"<a><!--only--></a>");
    EXPECT_EQ(Data(), L"");
}

TEST_F(Reading, TrimsEachTextOfAMixture) {
    Load(L"<a> x <![CDATA[ y ]]> z </a>");
    EXPECT_EQ(Data(), L" x  y  z ");
    document_.SetFlags(kDocTrim);
    EXPECT_EQ(Data(), L"x y z");
}

TEST_F(Reading, PassesOverWhatIsNoNodeInAMixture) {
    Load(L"<a>x<1>y<!z>w</a>");
    EXPECT_EQ(Data(), L"xyw");
    Load(L"<a>x<![C]]>y</a>");
    EXPECT_EQ(Data(), L"xy");
}

TEST_F(Reading, GivesTheInsideOfANode) {
    Load(L"<r>a&lt;b<!--c--><![CDATA[d&lt;]]><?e f?></r>\r\n</lone ><!DOCTYPE g>");
    PutOnNode(document_, kNodeText, L"a&lt;b");
    EXPECT_EQ(NodeData(), L"a<b");
    PutOnNode(document_, kNodeComment, L"<!--c-->");
    EXPECT_EQ(NodeData(), L"c");
    PutOnNode(document_, kNodeCdata, L"<![CDATA[d&lt;]]>");
    EXPECT_EQ(NodeData(), L"d&lt;");
    PutOnNode(document_, kNodeInstruction, L"<?e f?>");
    EXPECT_EQ(NodeData(), L"e f");
    PutOnNode(document_, kNodeSpace, L"\r\n");
    EXPECT_EQ(NodeData(), L"\r\n");
    PutOnNode(document_, kNodeLoneEndTag, L"</lone >");
    EXPECT_EQ(NodeData(), L"lone");
    PutOnNode(document_, kNodeDocType, L"<!DOCTYPE g>");
    EXPECT_EQ(NodeData(), L"<!DOCTYPE g>");
    PutOnNode(document_, kNodeComment, L"<r>");
    EXPECT_EQ(NodeData(), L"");
}

TEST_F(Reading, ReturnsDataInPlaceWhereNothingIsToBeDecoded) {
    const auto plain = [&] { return PlainData(document_.State(), 1); };
    EXPECT_EQ(plain(), L"") << "no element";
    for (const wchar_t* const data : {L"", L" x\n y ", L"a longer text; > too"}) {
        Load((std::wstring(L"<a b='&amp;'>") + data + L"</a>").c_str());
        EXPECT_EQ(plain(), data);
    }
    Load(L"<a>x<b/></a>");
    EXPECT_EQ(plain(), L"") << "an element with children has none";
    for (const wchar_t* const text : {L"<a>123456789&amp;</a>", L"<a>x<!--c--></a>",
                                      L"<a><![CDATA[x]]></a>", L"<a>x<?p?></a>", L"<a>&</a>"}) {
        Load(text);
        EXPECT_FALSE(plain().has_value()) << text;
    }
    for (const std::uint32_t flag : {kDocTrim, kDocCollapse}) {
        document_.SetFlags(flag);
        Load(L"<a> x </a>");
        EXPECT_FALSE(plain().has_value()) << flag;
    }
}

TEST_F(Reading, ReadsAnElementBesideTheCurrentNode) {
    Load(L"<r><a>x</a><!--c--></r>");
    document_.ResetPosition(1, 2, 0);
    PutOnNode(document_, kNodeComment, L"<!--c-->");
    EXPECT_EQ(document_.GetData(2), L"c"); // the current position means the node
    document_.ResetPosition(1, 0, 0);
    PutOnNode(document_, kNodeComment, L"<!--c-->");
    EXPECT_EQ(document_.GetData(2), L"x");
}

TEST_F(Reading, ReturnsNoDataAfterAStartTagTooLongForItsRecord) {
    const std::wstring blanks(0x400000, L' ');
    document_.SetText(std::wstring_view(L"<a" + blanks + L"x='1'>data</a>"));
    EXPECT_EQ(Data(), L"");
    EXPECT_EQ(Attribute(L"x"), L"");
    document_.SetText(std::wstring_view(L"<a>data</a" + blanks + L">"));
    EXPECT_EQ(Data(), L"data");
}

TEST_F(Reading, ReadsATagOfTheLongestLength) {
    const std::wstring blanks(0x3FFFFF - 10, L' ');
    ASSERT_TRUE(document_.SetText(std::wstring_view(L"<a" + blanks + L"xy='12'>data</a>")));
    EXPECT_EQ((*document_.State().records)[1].StartTagLength(), kLongestStartTag);
    EXPECT_EQ(Data(), L"data");
    EXPECT_EQ(Attribute(L"xy"), L"12");
}
