#include <gtest/gtest.h>

#include <vector>

#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/DocumentConstants.h"
#include "ObLibX/src/xml/scan/TagScanner.h"
#include "tests/unit/ObLibX/xml/scan/Scans.h"

namespace ObLibX {
namespace {

TagScanner ScannerOf(std::wstring_view text, std::int32_t cursor = 0, std::uint32_t flags = 0) {
    TagScanner scanner(text.data(), text.size(), flags);
    scanner.cursor = cursor;
    return scanner;
}

std::string TokenOf(const TagScanner& scanner) {
    return Narrow({scanner.Token(), std::size_t(scanner.TokenLength())});
}

// "value" or, when it was quoted, "'value'"; "-" when there is no such attribute.
std::string ValueIn(std::wstring_view tag, std::wstring_view name) {
    TagScanner scanner = ScannerOf(tag, 1);
    scanner.NextName();
    if (!scanner.FindAttribute(name.data(), name.size())) {
        return "-";
    }
    const std::string value = TokenOf(scanner);
    return (scanner.tokenFlags & kTokenQuoted) != 0 ? "'" + value + "'" : value;
}

std::string NamesIn(std::wstring_view tag) {
    std::string names;
    for (std::int32_t index = 0;; ++index) {
        TagScanner scanner = ScannerOf(tag, 1);
        scanner.NextName();
        if (!scanner.FindAttributeAt(index)) {
            return names;
        }
        names += TokenOf(scanner) + ",";
    }
}

// The units below 0x300 that end a token of this kind after a letter.
template <typename Ends>
std::wstring Enders(Ends ends) {
    std::wstring enders;
    for (wchar_t unit = 0; unit < 0x300; ++unit) {
        if (ends(unit)) {
            enders += unit;
        }
    }
    return enders;
}

TEST(ScannerClasses, EachKindOfTokenEndsWhereItShould) {
    EXPECT_EQ(Enders(IsXmlSpace), L"\t\n\r ");
    EXPECT_EQ(Enders(EndsTagName), L"\t\n\r />");
    EXPECT_EQ(Enders(EndsName), L"\t\n\r !\"'/;<=>?\\");
    EXPECT_EQ(Enders(EndsAttributeName), L"\t\n\r /=>?");
    EXPECT_EQ(Enders(EndsUnquotedValue), L"\t\n\r >");
    EXPECT_EQ(Enders(EndsCallerName), std::wstring(L"\0 /=[]", 6));
}

TEST(ScannerToken, IsEmptyWithItsEndBeforeItsStart) {
    TagScanner scanner(L"", 0, 0);
    EXPECT_EQ(scanner.TokenLength(), 0);
    EXPECT_FALSE(scanner.NextName());
    EXPECT_EQ(scanner.tokenEnd, scanner.tokenStart - 1);
}

TEST(ScannerToken, NamesOfAContentTypeAreWalkedOneByOne) {
    const std::wstring_view text = L"  text/html; charset=utf-8";
    TagScanner scanner = ScannerOf(text);
    std::vector<std::string> tokens;
    while (scanner.cursor < scanner.textLength) {
        if (scanner.NextName()) {
            tokens.push_back(TokenOf(scanner));
        } else {
            ++scanner.cursor;
        }
    }
    EXPECT_EQ(tokens, (std::vector<std::string>{"text", "html", "charset", "utf-8"}));
}

TEST(ScannerToken, ComparesWithTheDocumentsCaseRule) {
    TagScanner scanner = ScannerOf(L"Name");
    ASSERT_TRUE(scanner.NextName());
    EXPECT_TRUE(scanner.TokenIs(L"Name", 4));
    EXPECT_FALSE(scanner.TokenIs(L"name", 4));
    EXPECT_FALSE(scanner.TokenIs(L"Nam", 3));
    EXPECT_FALSE(scanner.TokenIs(L"Names", 5));
    scanner.tokenFlags |= kDocIgnoreCase;
    EXPECT_TRUE(scanner.TokenIs(L"nAME", 4));
}

TEST(ScannerClasses, CaseIsFoldedUpToTheFirstEqualCharacterBeyondAscii) {
    EXPECT_TRUE(SameName(L"aB\x00e4", L"Ab\x00e4", 3, true));
    EXPECT_TRUE(SameName(L"\x00e4q", L"\x00e4q", 2, true));
    EXPECT_FALSE(SameName(L"\x00e4q", L"\x00e4Q", 2, true));
    EXPECT_FALSE(SameName(L"\x00e4", L"\x00c4", 1, true));
    EXPECT_FALSE(SameName(L"a", L"A", 1, false));
    EXPECT_FALSE(SameName(L"[", L"{", 1, true));
    EXPECT_TRUE(SameName(L"ab", L"ac", 1, false));
    EXPECT_TRUE(SameName(L"x", L"y", 0, false));
}

TEST(ScannerAttribute, ValuesAreQuotedOrNot) {
    EXPECT_EQ(ValueIn(L"<a b=\"1 > 2\" c='\"'>", L"b"), "'1 > 2'");
    EXPECT_EQ(ValueIn(L"<a b=\"1 > 2\" c='\"'>", L"c"), "'\"'");
    EXPECT_EQ(ValueIn(L"<a b=1 c=2>", L"b"), "1");
    EXPECT_EQ(ValueIn(L"<a b=1 c=2>", L"c"), "2");
    EXPECT_EQ(ValueIn(L"<a b\n =\t '1'>", L"b"), "'1'");
    EXPECT_EQ(ValueIn(L"<a b=''>", L"b"), "''");
    EXPECT_EQ(ValueIn(L"<a b=>", L"b"), "");
    EXPECT_EQ(ValueIn(L"<a b='1'c='2'/>", L"c"), "'2'");
}

TEST(ScannerAttribute, OneWithoutAValueHasItsNameForOne) {
    EXPECT_EQ(ValueIn(L"<a b c=\"1\">", L"b"), "b");
    EXPECT_EQ(ValueIn(L"<a b c=\"1\">", L"c"), "'1'");
    EXPECT_EQ(ValueIn(L"<a c b/>", L"b"), "b");
}

TEST(ScannerAttribute, IsLookedForOnlyInTheTagAndNotInValues) {
    EXPECT_EQ(ValueIn(L"<a b='c=1'>c=2", L"c"), "-");
    EXPECT_EQ(ValueIn(L"<a b='>' c=1>", L"c"), "1");
    EXPECT_EQ(ValueIn(L"<a/><b c=1>", L"c"), "-");
    EXPECT_EQ(ValueIn(L"<a", L"c"), "-");
    EXPECT_EQ(ValueIn(L"<a bb=1>", L"b"), "-");
}

TEST(ScannerAttribute, TheSlashOfAnUnquotedValueIsTheValues) {
    EXPECT_EQ(ValueIn(L"<a href=x/>", L"href"), "x/");
    EXPECT_EQ(ValueIn(L"<a href=x />", L"href"), "x");
    EXPECT_EQ(ValueIn(L"<a href=/>", L"href"), "/");
    EXPECT_EQ(ValueIn(L"<a href= />", L"href"), "");
    EXPECT_EQ(ValueIn(L"<a href=x\"/>", L"href"), "x\"");
}

TEST(ScannerAttribute, StrayCharactersBetweenAttributesAreNoNames) {
    EXPECT_EQ(NamesIn(L"<a / b=1 ? =c d=\"2\" =\"e f\" g/>"), "b,d,g,");
    EXPECT_EQ(NamesIn(L"<a \"b c>"), "\"b,c,");
    EXPECT_EQ(NamesIn(L"<a b==\"x y\" z>"), "b,y\",z,");
    EXPECT_EQ(NamesIn(L"<a>"), "");
}

TEST(ScannerAttribute, AreNumberedFromZero) {
    EXPECT_EQ(NamesIn(L"<a b c='2' d = 3 e=4/>"), "b,c,d,e,");
}

TEST(ScannerAttribute, LooksAtNothingBeforeTheText) {
    const wchar_t units[] = L" />";
    TagScanner scanner(units + 1, 2, 0);
    ASSERT_TRUE(scanner.NextValue());
    EXPECT_EQ(TokenOf(scanner), "/");
}

TEST(ScannerAttribute, AnUnendedQuoteEndsWithTheText) {
    EXPECT_EQ(ValueIn(L"<a b='1 c", L"b"), "'1 c'");
}

} // namespace
} // namespace ObLibX
