// A second, independent reader sees the same in well-formed documents: the same elements at the
// same places, with the same names, attributes and data.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <pugixml.hpp>

#include "ObLibX/src/xml/document/ElementText.h"
#include "ObLibX/src/xml/document/Navigation.h"
#include "tests/unit/ObLibX/xml/document/DocumentMaker.h"
#include "tests/unit/ObLibX/xml/document/ElementTree.h"

using namespace ObLibX;

namespace {

constexpr unsigned int kEverything = pugi::parse_cdata | pugi::parse_escapes |
                                     pugi::parse_ws_pcdata | pugi::parse_comments | pugi::parse_pi |
                                     pugi::parse_declaration | pugi::parse_doctype;

bool IsElementNode(const pugi::xml_node& node) { return node.type() == pugi::node_element; }

pugi::xml_node NextElement(const pugi::xml_node& node) {
    pugi::xml_node next = node.next_sibling();
    while (next && !IsElementNode(next)) next = next.next_sibling();
    return next;
}

pugi::xml_node FirstElement(const pugi::xml_node& node) {
    const pugi::xml_node first = node.first_child();
    return !first || IsElementNode(first) ? first : NextElement(first);
}

bool IsSpace(const wchar_t* text) {
    return std::wstring_view(text).find_first_not_of(L" \t\r\n") == std::wstring_view::npos;
}

// Text alone is taken as it is; beside other nodes white space is none.
std::wstring DataOf(const pugi::xml_node& element) {
    std::wstring data;
    if (FirstElement(element)) return data;
    const bool alone = element.first_child() == element.last_child();
    for (const pugi::xml_node& node : element.children()) {
        const bool text = node.type() == pugi::node_pcdata && (alone || !IsSpace(node.value()));
        if (text || node.type() == pugi::node_cdata) data += node.value();
    }
    return data;
}

void ExpectSameAttributes(XmlOffsetDocument& document, const pugi::xml_node& element) {
    std::int32_t index = 0;
    for (const pugi::xml_attribute& attribute : element.attributes()) {
        ASSERT_EQ(document.GetAttributeNameAt(index++), attribute.name());
        ASSERT_EQ(document.GetAttribute(document.CurrentPosition(), attribute.name()),
                  attribute.value());
    }
    ASSERT_EQ(document.GetAttributeNameAt(index), L"");
}

// Whether both are on the same element.
void ExpectSameElement(XmlOffsetDocument& document, const pugi::xml_node& element) {
    const std::int32_t position = document.CurrentPosition();
    ASSERT_EQ(document.GetTagName(), element.name());
    ASSERT_EQ((*document.State().records)[position].start,
              static_cast<std::uint32_t>(element.offset_debug() - 1));
    ASSERT_NO_FATAL_FAILURE(ExpectSameAttributes(document, element));
    ASSERT_EQ(document.GetData(position), DataOf(element));
    const auto plain = PlainData(document.State(), position);
    if (plain) {
        ASSERT_EQ(*plain, DataOf(element));
    }
}

// Goes through all elements of both: in, along, out. Returns the number of elements.
void ExpectSameTree(XmlOffsetDocument& document, const pugi::xml_node& top, std::size_t& elements) {
    pugi::xml_node element = FirstElement(top);
    ASSERT_TRUE(document.FindElement());
    for (;;) {
        ++elements;
        ASSERT_NO_FATAL_FAILURE(ExpectSameElement(document, element));
        ASSERT_TRUE(document.IntoElement());
        if (const pugi::xml_node child = FirstElement(element)) {
            ASSERT_TRUE(document.FindElement());
            element = child;
            continue;
        }
        ASSERT_FALSE(document.FindElement());
        ASSERT_TRUE(document.OutOfElement());
        while (!NextElement(element)) {
            ASSERT_FALSE(document.FindElement());
            element = element.parent();
            if (element == top) return;
            ASSERT_TRUE(document.OutOfElement());
        }
        ASSERT_TRUE(document.FindElement());
        element = NextElement(element);
    }
}

std::size_t ExpectSameDocument(const std::wstring& text) {
    std::size_t elements = 0;
    pugi::xml_document other;
    const pugi::xml_parse_result parsed = other.load_buffer(
        text.data(), text.size() * sizeof(wchar_t), kEverything, pugi::encoding_wchar);
    EXPECT_TRUE(parsed) << parsed.description() << " in " << Narrow(text);
    XmlOffsetDocument document;
    EXPECT_TRUE(document.SetText(std::wstring_view(text))) << Narrow(text);
    EXPECT_EQ(document.Result(), L"");
    if (!testing::Test::HasFailure()) ExpectSameTree(document, other, elements);
    if (testing::Test::HasFailure()) std::printf("%s\n", Narrow(text).c_str());
    return elements;
}

} // namespace

TEST(Oracle, SeesTheSameInAKnownDocument) {
    EXPECT_EQ(ExpectSameDocument(L"<r a='1' b=\"&lt;&#x1F600;>\"><c> x &amp; y </c>\r\n"
                                 L"<d>p<![CDATA[<q>]]><!--z--> </d><e/><f><g h=''/></f></r>"),
              6u);
}

TEST(Oracle, SeesTheSameInThousandsOfDocuments) {
    const auto first = static_cast<std::uint32_t>(
        std::chrono::steady_clock::now().time_since_epoch().count() & 0xFFFFFF);
    constexpr std::uint32_t kFixed = 2000;
    constexpr std::uint32_t kRounds = 4000;
    std::size_t elements = 0;
    for (std::uint32_t round = 0; round < kRounds; ++round) {
        const std::uint32_t seed = round < kFixed ? round : first + round;
        SCOPED_TRACE("seed " + std::to_string(seed));
        elements += ExpectSameDocument(DocumentMaker(seed).Make());
        if (HasFailure()) return;
    }
    EXPECT_GT(elements, kRounds * 5);
    std::printf("%zu elements; seeds 0 to %u and %u to %u\n", elements, kFixed - 1, first + kFixed,
                first + kRounds - 1);
}
