// The reader of XML and its rules: what is found where, and that everything else stays as it was.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "services/transforms/documents/XmlRules.h"

using namespace transforms;
using namespace transforms::documents;

namespace {

constexpr char kText[] =
    "<w:a xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\">";

std::string CleanWith(const XmlRule& rule, const std::string& content) {
    personal::FindingCounter found;
    const std::string text = kText + content + "</w:a>";
    const XmlResult result = CleanXml(text, {&rule, 1}, found);
    EXPECT_EQ(result.outcome == CleanOutcome::Cleaned, !found.IsEmpty());
    if (result.outcome != CleanOutcome::Cleaned) return content;
    const std::size_t head = sizeof kText - 1;
    return result.text.substr(head, result.text.size() - head - 6);
}

bool IsWhole(const std::string& text) {
    XmlReader reader(text);
    while (reader.Next()) {
    }
    return reader.IsWhole();
}

TEST(XmlRules, RemoveAnElementWithEverythingInIt) {
    const XmlRule rule{XmlAction::RemoveElement, Ns::Word, "b", FindingKind::Authors};
    EXPECT_EQ(CleanWith(rule, "1<w:b><w:b/>x<w:c/></w:b>2<w:b/>3<b/>"), "123<b/>");
}

TEST(XmlRules, RemoveOrReplaceAnAttributeAndNothingBesideIt) {
    const XmlRule remove{XmlAction::RemoveAttribute, Ns::Word, "b", FindingKind::Authors};
    EXPECT_EQ(CleanWith(remove, "<w:c  a = '1'\n w:b=\"2\" b='3' />"), "<w:c  a = '1' b='3' />");
    const XmlRule set{XmlAction::SetAttribute, Ns::Word, "b", FindingKind::Authors, {}, "new"};
    EXPECT_EQ(CleanWith(set, "<w:c w:b='old'/><w:c w:b=''/>"), "<w:c w:b='new'/><w:c w:b=''/>");
    EXPECT_EQ(CleanWith(set, "<w:c w:b='new'/>"), "<w:c w:b='new'/>");
}

TEST(XmlRules, ReplaceTextOnlyInsideTheNamedElement) {
    const XmlRule rule{XmlAction::ReplaceText, Ns::Word, "b", FindingKind::Authors, "c", "new"};
    EXPECT_EQ(CleanWith(rule, "<w:b>1</w:b><w:c><w:b>2</w:b><w:b/></w:c>"),
              "<w:b>1</w:b><w:c><w:b>new</w:b><w:b/></w:c>");
}

TEST(XmlRules, LeaveTextsCommentsAndReferencesAsTheyAre) {
    const XmlRule rule{XmlAction::RemoveElement, Ns::Word, "b", FindingKind::Authors};
    const std::string kept = "<!-- <w:b/> -->&#13;\r\n<![CDATA[<w:b>]]><?p <w:b/>?>";
    EXPECT_EQ(CleanWith(rule, kept + "<w:b/>"), kept);
    EXPECT_EQ(CleanWith(rule, kept), kept);
}

TEST(XmlRules, CutPathsOfAComputerToTheFilesName) {
    const XmlRule rule{XmlAction::RemoveElement, Ns::Word, "none", FindingKind::Authors};
    for (const char* path : {"C:\\Users\\a\\x.jpg", "file:///C:/a/x.jpg", "file:///home/a/x.jpg",
                             "\\\\server\\share\\x.jpg", "/C:/a/x.jpg", "FILE:x.jpg"}) {
        EXPECT_EQ(CleanWith(rule, "<c href=\"" + std::string(path) + "\"/>"),
                  "<c href=\"x.jpg\"/>");
    }
    EXPECT_EQ(CleanWith(rule, "<c href=\"C:\\Users\\a\\\"/>"), "<c href=\".\"/>");
    for (const char* other : {"https://a/b", "x.jpg", "../x.jpg", "a:b", "\\\\0\\x", "/a/b", ""}) {
        const std::string content = "<c href=\"" + std::string(other) + "\"/>";
        EXPECT_EQ(CleanWith(rule, content), content);
    }
}

TEST(XmlRules, CutPathsInEveryAttributeThatNamesAFile) {
    const XmlRule rule{XmlAction::RemoveElement, Ns::Word, "none", FindingKind::Authors};
    for (const char* name :
         {"Target", "href", "xlink:href", "o:href", "src", "descr", "title", "o:title", "alt",
          "sourceFile", "odcFile", "destinationFile", "display"}) {
        const std::string start = "<c " + std::string(name);
        EXPECT_EQ(CleanWith(rule, start + "=\"C:\\Users\\a\\x.jpg\"/>"), start + "=\"x.jpg\"/>");
    }
}

TEST(XmlRules, LeavePathsThatAreContent) {
    const XmlRule rule{XmlAction::RemoveElement, Ns::Word, "none", FindingKind::Authors};
    for (const char* content :
         {"<tableColumn name=\"C:\\Data\\2024\"/>", "<s v=\"C:\\a\\x.txt\"/>",
          "<cacheField name=\"C:\\a\\x\"/>", "<filter val=\"\\\\server\\share\\x\"/>",
          "<w:docVar w:name=\"a\" w:val=\"C:\\a\\x\"/>",
          "<w:listItem w:displayText=\"C:\\a\\x\" w:value=\"C:\\a\\x\"/>",
          "<table:table-cell office:string-value=\"file:///C:/a/x\"/>",
          "<numFmt formatCode=\"\\\\ab\\x\"/>"}) {
        EXPECT_EQ(CleanWith(rule, content), content);
    }
}

TEST(XmlReader, KnowsTheNamespaceOfEachPrefixWhereItIsUsed) {
    XmlReader reader("<a xmlns='http://www.w3.org/1999/xlink'><b xmlns=''/><x:c xmlns:x='urn:x'/>"
                     "<d/></a>");
    std::vector<Ns> seen;
    while (reader.Next()) {
        if (reader.Event() == XmlEvent::Start) seen.push_back(reader.Element().ns);
    }
    EXPECT_TRUE(reader.IsWhole());
    EXPECT_EQ(seen, (std::vector<Ns>{Ns::XLink, Ns::None, Ns::Other, Ns::XLink}));
}

TEST(XmlReader, RefusesWhatIsNoWholeDocument) {
    for (const char* text : {"",
                             " ",
                             "a",
                             "<a>",
                             "</a>",
                             "<a></b>",
                             "<a/><b/>",
                             "<a/>x",
                             "<a b/>",
                             "<a b=c/>",
                             "<a b='1'c='2'/>",
                             "<a b='<'/>",
                             "<a b='1/>",
                             "<!--<a/>",
                             "<a><![CDATA[</a>",
                             "<a><!DOCTYPE a></a>",
                             "<!DOCTYPE a [<!ENTITY b 'c'>]><a/>",
                             "<>",
                             "<a",
                             "<?xml",
                             "<a/ >"}) {
        EXPECT_FALSE(IsWhole(text)) << text;
    }
    for (const char* text : {"<a/>", "<a></a >", "\xEF\xBB\xBF<?xml version='1.0'?>\n<a\t/>\n",
                             "<!DOCTYPE a SYSTEM 'b'><a>'\"></a><!-- - -->"}) {
        EXPECT_TRUE(IsWhole(text)) << text;
    }
}

TEST(XmlReader, RefusesElementsThatAreNestedTooDeep) {
    const auto nested = [](std::size_t depth) {
        std::string text;
        for (std::size_t level = 0; level < depth; ++level) text += "<a>";
        for (std::size_t level = 0; level < depth; ++level) text += "</a>";
        return text;
    };
    EXPECT_TRUE(IsWhole(nested(XmlReader::kDeepest)));
    EXPECT_FALSE(IsWhole(nested(XmlReader::kDeepest + 1)));
}

// Each name is looked up among them.
TEST(XmlReader, RefusesMoreNamespacesThanDocumentsHave) {
    const auto bound = [](int count) {
        std::string text = "<a";
        for (int number = 0; number < count; ++number) {
            text += " xmlns:n" + std::to_string(number) + "='urn:x'";
        }
        return text + "/>";
    };
    EXPECT_TRUE(IsWhole(bound(512)));
    EXPECT_FALSE(IsWhole(bound(513)));
}

TEST(XmlReader, ReadsReferencesInValues) {
    EXPECT_EQ(PlainText("a&amp;b&#x41;&#66;&lt;&quot;&apos;&gt;"), "a&bAB<\"'>");
    EXPECT_EQ(PlainText("&other; & &#x; &#; &#12x; &#-5; &"), "&other; & &#x; &#; &#12x; &#-5; &");
}

TEST(XmlReader, ReadsReferencesToCharactersOfEveryLengthInUtf8) {
    EXPECT_EQ(
        PlainText("&#127;&#128;&#252;&#x7FF;&#x800;&#xFFFD;&#x10000;&#x10FFFF;"),
        "\x7F\xC2\x80\xC3\xBC\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
    for (const char* kept : {"&#0;", "&#1;", "&#xD800;", "&#xDFFF;", "&#xFFFE;", "&#x110000;",
                             "&#99999999999999;", "&#xFFFFFFFFF;"}) {
        EXPECT_EQ(PlainText(kept), kept);
    }
}

// A reader that looks for the end of each reference in the whole rest takes hours for this, and the
// suite's time limit ends it.
TEST(XmlReader, ReadsALongRowOfReferencesWithoutAnEnd) {
    const std::string row(std::size_t{20} << 20, '&');
    EXPECT_TRUE(PlainText(row) == row);
    EXPECT_TRUE(PlainText(row + ";") == row + ";");
}

TEST(XmlReader, ReadsUtf8Alone) {
    EXPECT_TRUE(IsUtf8Xml("<a/>"));
    EXPECT_TRUE(IsUtf8Xml("\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8'?><a/>"));
    EXPECT_FALSE(IsUtf8Xml("<?xml version='1.0' encoding=\"UTF-16\"?><a/>"));
    EXPECT_FALSE(IsUtf8Xml(std::string("<\0a\0", 4)));
}

} // namespace
