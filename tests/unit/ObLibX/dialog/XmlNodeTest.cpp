// The tree of the description: what is read into a node, and how a node is asked.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "ObLibX/src/dialog/ObXML.h"

namespace {

using ObLib::ObString;
using ObLibX::ObXML;
using ObLibX::ObXMLNode;

ObXML Loaded(const wchar_t* text) {
    ObXML tree;
    EXPECT_TRUE(tree.LoadText(ObString(text)));
    return tree;
}

std::wstring Text(const ObString& text) { return text.CStr(); }

TEST(DescriptionTree, HasTheElementsInDocumentOrder) {
    const ObXML tree = Loaded(L"<r a='1' b='2'><x>one</x><y/><x>two</x></r>");
    EXPECT_EQ(L"r", Text(tree.name));
    ASSERT_EQ(2u, tree.attributes.size());
    EXPECT_EQ(L"b", Text(tree.attributes[1].name));
    EXPECT_EQ(L"2", Text(tree.attributes[1].value));
    ASSERT_EQ(3u, tree.children.size());
    EXPECT_EQ(L"two", Text(tree.children[2]->text));
    EXPECT_EQ(&tree, tree.children[2]->parent);
    EXPECT_EQ(nullptr, tree.parent);
    EXPECT_EQ(0u, tree.children[0]->reserved);
}

TEST(DescriptionTree, TrimsBlanksAndLineEndsButNoTabsAndNoAttributes) {
    const ObXML tree = Loaded(L"<r><x a=' v '> \r\n\tone two\t \n</x><y> \r\n </y></r>");
    EXPECT_EQ(L"\tone two\t", Text(tree.children[0]->text));
    EXPECT_EQ(L" v ", Text(tree.children[0]->attributes[0].value));
    EXPECT_EQ(L"", Text(tree.children[1]->text));
}

TEST(DescriptionTree, HasDecodedTexts) {
    const ObXML tree = Loaded(L"<r a='&lt;&#65;'>&amp;<![CDATA[<]]></r>");
    EXPECT_EQ(L"<A", Text(tree.attributes[0].value));
    EXPECT_EQ(L"&<", Text(tree.text));
}

TEST(DescriptionTree, IsEmptyWithoutAnElement) {
    ObXML tree = Loaded(L"<r/>");
    for (const wchar_t* const text : {L"", L"no element", L"<!-- r -->", L"</r>"}) {
        EXPECT_FALSE(tree.LoadText(ObString(text))) << text;
        EXPECT_EQ(L"", Text(tree.name));
        EXPECT_TRUE(tree.children.empty());
    }
    EXPECT_FALSE(tree.LoadText(ObString()));
    EXPECT_TRUE(tree.LoadText(ObString(L"<again/>")));
    EXPECT_FALSE(tree.Error().HasText());
}

// An element that isn't ended has nothing below it, as the document library indexes it.
TEST(DescriptionTree, IsUsedAsFarAsABadTextCouldBeIndexed) {
    const ObXML tree = Loaded(L"<r><x>one</x><y><z a=1></y></w></r>");
    EXPECT_EQ(L"one", Text(tree.ChildText(L"x", L"")));
    ASSERT_NE(nullptr, tree.FirstChild(L"y"));
    ASSERT_NE(nullptr, tree.FirstChild(L"y")->FirstChild(L"z"));
    EXPECT_EQ(L"1", Text(tree.FirstChild(L"y")->FirstChild(L"z")->Attribute(L"a", L"")));
    EXPECT_TRUE(Loaded(L"<r><x>one</x>").children.empty());
    EXPECT_EQ(L"r", Text(Loaded(L"<r><x/></r><second/>").name));
}

TEST(DescriptionTree, TakesATextThatEndsAnywhere) {
    const std::wstring whole =
        L"<?xml version='1.0'?><r><!-- c --><x a=\"b&amp;\">t<![CDATA[c]]></x><y/></r>";
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        ObXML tree;
        const bool isLoaded = tree.LoadText(ObString(whole.substr(0, length).c_str()));
        EXPECT_EQ(isLoaded, tree.name.HasText() || !tree.children.empty()) << length;
    }
}

TEST(DescriptionTree, IsAsDeepAsTheText) {
    constexpr std::size_t kDepth = 100'000;
    std::wstring text;
    for (std::size_t level = 0; level < kDepth; ++level) text += L"<a>";
    text += L"x";
    for (std::size_t level = 0; level < kDepth; ++level) text += L"</a>";
    ObXML tree = Loaded(text.c_str());
    const ObXML copy(tree);
    tree = ObXML();
    std::size_t depth = 1;
    const ObXMLNode* node = &copy;
    for (; !node->children.empty(); node = node->children[0].get()) {
        EXPECT_EQ(node, node->children[0]->parent);
        ++depth;
    }
    EXPECT_EQ(kDepth, depth);
    EXPECT_EQ(L"x", Text(node->text));
}

TEST(DescriptionTree, TakesATextOfAMegabyte) {
    std::wstring text = L"<r>";
    while (text.size() < 1'000'000) text += L"<control id=\"1003\"><cue>text</cue></control>";
    const ObXML tree = Loaded((text + L"</r>").c_str());
    EXPECT_EQ((text.size() - 3) / 44, tree.children.size());
    EXPECT_EQ(1003, tree.children.back()->IntAttribute(L"id", 0));
}

TEST(DescriptionNode, FindsTheFirstChildOfANameInAnyCase) {
    const ObXML tree = Loaded(L"<r><X>one</X><x>two</x></r>");
    ASSERT_NE(nullptr, tree.FirstChild(L"x"));
    EXPECT_EQ(L"one", Text(tree.FirstChild(L"x")->text));
    EXPECT_EQ(nullptr, tree.FirstChild(L"r"));
    EXPECT_EQ(nullptr, tree.FirstChild(L""));
    EXPECT_EQ(L"one", Text(tree.ChildText(L"x", L"none")));
    EXPECT_EQ(L"none", Text(tree.ChildText(L"y", L"none")));
}

TEST(DescriptionNode, FindsNoChildBelowItsChildren) {
    const ObXML tree = Loaded(L"<r><x><y>one</y></x></r>");
    EXPECT_EQ(nullptr, tree.FirstChild(L"y"));
}

TEST(DescriptionNode, GivesCopiesOfAllChildrenOfAName) {
    std::vector<std::unique_ptr<ObXMLNode>> found;
    {
        const ObXML tree = Loaded(L"<r><x>one<z/></x><y/><X><z>deep</z></X></r>");
        EXPECT_TRUE(tree.Children(L"x", found));
        EXPECT_EQ(nullptr, found[1]->parent);
        EXPECT_EQ(&tree, tree.children[2]->parent) << "the original stays";
    }
    ASSERT_EQ(2u, found.size());
    EXPECT_EQ(L"deep", Text(found[1]->ChildText(L"z", L"")));
    EXPECT_EQ(found[1].get(), found[1]->children[0]->parent);
    EXPECT_FALSE(Loaded(L"<r/>").Children(L"x", found));
    EXPECT_TRUE(found.empty()) << "what the list had before is gone";
}

TEST(DescriptionNode, ReadsAttributesInAnyCase) {
    const ObXML tree = Loaded(L"<r Name='One' name='two' flag='TRUE' empty=''/>");
    EXPECT_EQ(L"One", Text(tree.Attribute(L"NAME", L"none")));
    EXPECT_EQ(L"none", Text(tree.Attribute(L"other", L"none")));
    EXPECT_EQ(L"", Text(tree.Attribute(L"empty", L"none")));
    EXPECT_TRUE(tree.AttributeEquals(L"flag", L"true"));
    EXPECT_FALSE(tree.AttributeEquals(L"flag", L"tru"));
    EXPECT_TRUE(tree.AttributeEquals(L"empty", L""));
    EXPECT_FALSE(tree.AttributeEquals(L"other", L""));
}

struct NumberRow {
    const wchar_t* text;
    std::int32_t value;
};

TEST(DescriptionNode, ReadsNumbers) {
    constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
    constexpr NumberRow kRows[] = {
        {L"7", 7},
        {L" \t+12x", 12},
        {L"-5", -5},
        {L"", 0},
        {L"abc", 0},
        {L"- 5", 0},
        {L"0x10", 0},
        {L"2147483647", kHighest},
        {L"-2147483648", kLowest},
        {L"2147483648", 99},
        {L"-2147483649", 99},
        {L"99999999999999999999999999", 99},
    };
    for (const NumberRow& row : kRows) {
        EXPECT_EQ(row.value, ObLibX::DecimalValue(row.text, 99)) << row.text;
        const std::wstring text = std::wstring(L"<r n=\"") + row.text + L"\"/>";
        EXPECT_EQ(row.value, Loaded(text.c_str()).IntAttribute(L"N", 99)) << row.text;
    }
    EXPECT_EQ(99, Loaded(L"<r/>").IntAttribute(L"n", 99));
}

TEST(DescriptionNode, IsCopiedAndMovedWithItsBranch) {
    ObXMLNode first = Loaded(L"<r a='1'><x><y>deep</y></x></r>");
    const ObXMLNode copy = first;
    const ObXMLNode moved = std::move(first);
    for (const ObXMLNode* const node : {&copy, &moved}) {
        EXPECT_EQ(L"deep", Text(node->children[0]->ChildText(L"y", L"")));
        EXPECT_EQ(node, node->children[0]->parent);
        EXPECT_EQ(node->children[0].get(), node->children[0]->children[0]->parent);
        EXPECT_EQ(1, node->IntAttribute(L"a", 0));
    }
}

} // namespace
