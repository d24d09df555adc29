#include <gtest/gtest.h>

#include "ObLibX/src/xml/scan/DocumentConstants.h"
#include "ObLibX/src/xml/scan/TextCoding.h"

using namespace ObLibX;

namespace {

struct Coding {
    const wchar_t* text;
    const wchar_t* expected;
};

void ExpectDecoded(const Coding& coding, std::uint32_t flags = 0) {
    EXPECT_EQ(DecodeText(coding.text, flags), coding.expected);
}

} // namespace

TEST(DecodeText, TakesNumbersInBothBasesAndTheNamesOfXml) {
    const Coding codings[] = {{L"&#x41;", L"A"},        {L"&#X41;", L"A"},
                              {L"&#65;", L"A"},         {L"&lt;", L"<"},
                              {L"&gt;", L">"},          {L"&amp;", L"&"},
                              {L"&quot;", L"\""},       {L"&apos;", L"'"},
                              {L"&#xaF;", L"\xAF"},     {L"a&lt;b", L"a<b"},
                              {L"&amp;lt;", L"&lt;"},   {L"&#0065;", L"A"},
                              {L"&#xFFFF;", L"\xFFFF"}, {L"&#xD800;", L"\xD800"},
                              {L"&LT;", L"<"},          {L"", L""}};
    for (const Coding& coding : codings) ExpectDecoded(coding);
}

TEST(DecodeText, FindsTheUpperCaseRowOfANameWithTwoRows) {
    ExpectDecoded({L"&eacute;", L"\xC9"});
    ExpectDecoded({L"&Eacute;", L"\xC9"});
    ExpectDecoded({L"&oslash;&Oslash;", L"\xD8\xD8"});
}

TEST(DecodeText, TakesANameOfEightLettersAndNoLonger) {
    ExpectDecoded({L"&thetasym;", L"\x3D1"});
    ExpectDecoded({L"&thetasymx;", L"&thetasymx;"});
    ExpectDecoded({L"&ltltltltltlt;", L"&ltltltltltlt;"});
}

TEST(DecodeText, WritesASurrogatePairAboveTheFirstPlane) {
    ExpectDecoded({L"&#x10000;", L"\xD800\xDC00"});
    ExpectDecoded({L"&#x1F600;", L"\xD83D\xDE00"});
    ExpectDecoded({L"&#128512;", L"\xD83D\xDE00"});
    ExpectDecoded({L"&#x10FFFF;", L"\xDBFF\xDFFF"});
    ExpectDecoded({L"&#1114111;", L"\xDBFF\xDFFF"});
}

TEST(DecodeText, KeepsWhatIsNoReference) {
    for (const wchar_t* text :
         {L"&",           L"&&",       L"& ",       L"&;",         L"&#;",        L"&#x;",
          L"&#0;",        L"&#x0;",    L"&#00;",    L"&nosuch;",   L"&lt",        L"&#65",
          L"&#x41 ;",     L"&#6a;",    L"&#xg;",    L"&#x110000;", L"&#9999999;", L"&#xFFFFFF;",
          L"&#00000065;", L"&l\xE4t;", L"a & b; c", L"&#-5;",      L"&# 65;"}) {
        ExpectDecoded({text, text});
    }
}

TEST(DecodeText, ContinuesAfterAnAmpersandThatItKept) {
    ExpectDecoded({L"&&lt;", L"&<"});
    ExpectDecoded({L"&nosuch&#65;;", L"&nosuchA;"});
    ExpectDecoded({L"&#&#65;", L"&#A"});
}

TEST(DecodeText, DropsOuterWhiteSpaceWithTrim) {
    ExpectDecoded({L" \t\r\n a \t b \r\n", L"a \t b"}, kDocTrim);
    ExpectDecoded({L" \t ", L""}, kDocTrim);
    ExpectDecoded({L" a ", L" a "}, 0);
    ExpectDecoded({L"a", L"a"}, kDocTrim);
    ExpectDecoded({L"\xA0 a \xA0", L"\xA0 a \xA0"}, kDocTrim);
}

TEST(DecodeText, MakesOneBlankOfARunWithCollapse) {
    ExpectDecoded({L"\r\n a \t\r\n b\tc ", L"a b c"}, kDocCollapse);
    ExpectDecoded({L"  ", L""}, kDocCollapse);
    ExpectDecoded({L" a  b ", L"a b"}, kDocCollapse | kDocTrim);
}

TEST(DecodeText, LeavesWhiteSpaceThatIsWrittenAsAReference) {
    ExpectDecoded({L" &#32;a&#32; ", L" a "}, kDocTrim);
    ExpectDecoded({L"&#10;&#10;", L"\n\n"}, kDocCollapse);
}

TEST(DecodeText, ReservesTheLengthOfItsInput) {
    EXPECT_GE(DecodeText(std::wstring(1000, L' '), kDocTrim).capacity(), 1000u);
}

TEST(DecodeText, CopiesUnitsOfZero) {
    const std::wstring text(L"a\0&\0;", 5);
    EXPECT_EQ(DecodeText(text, 0), text);
}

TEST(EncodeText, ReplacesTheCharactersOfMarkup) {
    EXPECT_EQ(EncodeText(L"a<b>&c", 0), L"a&lt;b&gt;&amp;c");
    EXPECT_EQ(EncodeText(L"\"'", 0), L"\"'");
    EXPECT_EQ(EncodeText(L"&lt;", 0), L"&amp;lt;");
    EXPECT_EQ(EncodeText(L"", 0), L"");
}

TEST(EncodeText, ReplacesQuotesForAnAttribute) {
    EXPECT_EQ(EncodeText(L"<\"'>&", kEncodeAttribute), L"&lt;&quot;&apos;&gt;&amp;");
}

TEST(EncodeText, KeepsWhatLooksLikeAReferenceWithItsFlag) {
    for (const wchar_t* text : {L"&lt;", L"&nosuch;", L"&#65;", L"&#x41;", L"&#;", L"&:a;", L"&_;",
                                L"&\xE4;", L"&a-b.c:d_e9\xE4;"}) {
        EXPECT_EQ(EncodeText(text, kEncodeKeepReferences), text);
    }
}

TEST(EncodeText, ReplacesAnAmpersandThatBeginsNoReference) {
    const Coding codings[] = {
        {L"&", L"&amp;"},         {L"&;", L"&amp;;"},     {L"&9;", L"&amp;9;"},
        {L"&-a;", L"&amp;-a;"},   {L"&a", L"&amp;a"},     {L"&a b;", L"&amp;a b;"},
        {L"&a&b;", L"&amp;a&b;"}, {L"&a#;", L"&amp;a#;"}, {L"&lt;<", L"&lt;&lt;"}};
    for (const Coding& coding : codings) {
        EXPECT_EQ(EncodeText(coding.text, kEncodeKeepReferences), coding.expected);
    }
}

TEST(EncodeText, ReservesATenthMoreAndSeven) {
    EXPECT_GE(EncodeText(std::wstring(1000, L'a'), 0).capacity(), 1107u);
}

TEST(EncodeText, IsUndoneByDecodeText) {
    std::wstring all;
    for (unsigned unit = 1; unit < 0x300; ++unit) all.push_back(static_cast<wchar_t>(unit));
    EXPECT_EQ(DecodeText(EncodeText(all, kEncodeAttribute), 0), all);
    EXPECT_EQ(DecodeText(EncodeText(all, 0), 0), all);
}
