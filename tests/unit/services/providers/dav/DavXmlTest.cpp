#include "services/providers/dav/DavXml.h"

#include <gtest/gtest.h>

namespace providers {
namespace {

// The events of a text in short: "<n:name" and ">n:name" for tags (n: the namespace), texts as they
// are, "." and "!" for a good and a bad end.
std::string Events(std::string_view text) {
    DavXml xml(text);
    std::string events;
    for (;;) {
        const DavXmlEvent event = xml.Next();
        if (event == DavXmlEvent::Finished) return events + ".";
        if (event == DavXmlEvent::Bad) return events + "!";
        if (event == DavXmlEvent::Text) {
            events += xml.Text();
            continue;
        }
        events += event == DavXmlEvent::Start ? "<" : ">";
        events.append(xml.Namespace()).append(":").append(xml.Name());
    }
}

TEST(DavXmlTest, ReadsElementsTextsAndComments) {
    EXPECT_EQ("<:a1<:b>:b2>:a.", Events("<a>1<b/><!-- c -->2</a>"));
    EXPECT_EQ(
        "<:a<b>&]]>:a.",
        Events(
            "\xEF\xBB\xBF<?xml version=\"1.0\" encoding='UTF-8'?>\n<a ><![CDATA[<b>&]]]]></a >\n"));
    EXPECT_EQ("<:a>:a.", Events("<a x='1' y = \"2>\"/>"));
}

TEST(DavXmlTest, ResolvesPrefixesWhateverTheyAre) {
    EXPECT_EQ("<DAV::a<DAV::b>DAV::b>DAV::a.", Events("<D:a xmlns:D='DAV:'><D:b/></D:a>"));
    EXPECT_EQ("<DAV::a<x:b>x:b<DAV::c>DAV::c>DAV::a.",
              Events("<a xmlns='DAV:'><b xmlns='x'/><c/></a>"));
    EXPECT_EQ("<x:a<y:a>y:a<x:a>x:a>x:a.",
              Events("<p:a xmlns:p='x'><p:a xmlns:p='y'/><p:a/></p:a>"));
    EXPECT_EQ("<&:a>&:a.", Events("<a xmlns='&amp;'/>"));
}

TEST(DavXmlTest, DecodesReferences) {
    EXPECT_EQ("<:a<>&\"'A\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80>:a.",
              Events("<a>&lt;&gt;&amp;&quot;&apos;&#65;&#xE4;&#x20ac;&#x1F600;</a>"));
}

TEST(DavXmlTest, RefusesWhatMayBeAnAttack) {
    for (const char* text :
         {"<!DOCTYPE a><a/>", "<!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;</a>", "<a>&b;</a>",
          "<a>&#0;</a>", "<a>&#xD800;</a>", "<a>&#x110000;</a>", "<a>&#99999999;</a>", "<a>&#;</a>",
          "<a>&lt</a>", "<a><!ENTITY b 'c'></a>"}) {
        EXPECT_EQ('!', Events(text).back()) << text;
    }
    std::string deep;
    for (int i = 0; i < 65; ++i) deep += "<a>";
    EXPECT_EQ('!', Events(deep).back());
}

TEST(DavXmlTest, RefusesWhatIsNotWellFormed) {
    for (const char* text : {"",
                             " ",
                             "a",
                             "<",
                             "<a",
                             "<a>",
                             "<a></b>",
                             "</a>",
                             "<a/><b/>",
                             "<a/>x",
                             "x<a/>",
                             "<a b/>",
                             "<a b=c/>",
                             "<a b='<'/>",
                             "<a b='c/>",
                             "<a><b></a></b>",
                             "<p:a/>",
                             "<a><!--</a>",
                             "<a><![CDATA[</a>",
                             "<?xml version='1.0' encoding='utf-16'?><a/>",
                             "<a b='1'c='2'/>",
                             "<![CDATA[x]]>",
                             "<:/>",
                             "<1/>",
                             "<a -b=''/>"}) {
        EXPECT_EQ('!', Events(text).back()) << text;
    }
}

} // namespace
} // namespace providers
