#include <gtest/gtest.h>

#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/DocumentConstants.h"
#include "tests/unit/ObLibX/xml/scan/Scans.h"

namespace ObLibX {
namespace {

// ---- The end of the text

TEST(ScannerEnd, AnEmptyTextIsAtItsEndAtOnce) {
    TagScanner scanner(L"", 0, 0);
    NodeScan scan;
    EXPECT_EQ(scanner.NextNode(scan), -2);
    EXPECT_EQ(scan.type, -2);
    EXPECT_EQ(scan.length, 0);
    EXPECT_TRUE(scan.report.empty());
}

TEST(ScannerEnd, TextAndWhiteSpaceMayEndWithTheText) {
    EXPECT_EQ(Scans(L"abc"), "text 0+3");
    EXPECT_EQ(Scans(L" \t\r\n"), "space 0+4");
}

TEST(ScannerEnd, ATagThatIsCutOffIsReportedWithWhatItWas) {
    EXPECT_EQ(Scans(L"x<a b"), "text 0+1; error 1+4 {<unterminated_tag_syntax type=\"start_tag\" "
                               "offset=\"1\"/>}");
    EXPECT_EQ(Scans(L"</a"),
              "error 0+3 {<unterminated_tag_syntax type=\"end_tag\" offset=\"0\"/>}");
    EXPECT_EQ(Scans(L"<![CDATA[ ]]"),
              "error 0+12 {<unterminated_tag_syntax type=\"cdata_section\" offset=\"0\"/>}");
    EXPECT_EQ(
        Scans(L"<?xml ?"),
        "error 0+7 {<unterminated_tag_syntax type=\"processing_instruction\" offset=\"0\"/>}");
    EXPECT_EQ(Scans(L"<!-- --"),
              "error 0+7 {<unterminated_tag_syntax type=\"comment\" offset=\"0\"/>}");
    EXPECT_EQ(Scans(L"<!DOCTYPE a"),
              "error 0+11 {<unterminated_tag_syntax type=\"document_type\" offset=\"0\"/>}");
    EXPECT_EQ(Scans(L"<"), "error 0+1 {<unterminated_tag_syntax type=\"tag\" offset=\"0\"/>}");
    EXPECT_EQ(Scans(L"<!"), "error 0+2 {<unterminated_tag_syntax type=\"tag\" offset=\"0\"/>}");
    EXPECT_EQ(Scans(L"<!-"), "error 0+3 {<unterminated_tag_syntax type=\"tag\" offset=\"0\"/>}");
    EXPECT_EQ(Scans(L"<!["), "error 0+3 {<unterminated_tag_syntax type=\"tag\" offset=\"0\"/>}");
}

TEST(ScannerEnd, ACutOffDeclarationInADocumentTypeIsTheDocumentTypes) {
    const std::string expected = "<unterminated_tag_syntax type=\"document_type\" offset=\"0\"/>";
    for (const wchar_t* text : {L"<!DOCTYPE a [ <!-- ", L"<!DOCTYPE a [ <?b ", L"<!DOCTYPE a [ <",
                                L"<!DOCTYPE a [ <!ENTITY ", L"<!DOCTYPE a [ <b"}) {
        const std::string scans = Scans(text);
        EXPECT_NE(scans.find("{" + expected + "}"), std::string::npos) << scans;
    }
}

TEST(ScannerEnd, ABadTagThatIsAlsoCutOffHasBothReports) {
    EXPECT_EQ(Scans(L"<1"), "error 0+2 {<first_tag_syntax offset=\"1\"/>"
                            "<unterminated_tag_syntax type=\"tag\" offset=\"0\"/>}");
}

TEST(ScannerEnd, ABadDeclarationThatIsAlsoCutOffIsTheDocumentTypes) {
    EXPECT_EQ(Scans(L"<!DOCTYPE a [<!X"),
              "error 0+16 {<doctype_tag_syntax offset=\"15\"/>"
              "<unterminated_tag_syntax type=\"document_type\" offset=\"0\"/>}");
}

TEST(ScannerEnd, ATagInQuotesIsCutOffWhereverItsEndSeemsToBe) {
    EXPECT_EQ(Scans(L"<a b='>"),
              "error 0+7 {<unterminated_tag_syntax type=\"start_tag\" offset=\"0\"/>}");
}

// ---- The start, text and white space

TEST(ScannerText, WhiteSpaceEndsAtATagAndBecomesTextAtAnythingElse) {
    EXPECT_EQ(Scans(L" \t<a>"), "space 0+2; element 2+3 [a]");
    EXPECT_EQ(Scans(L" \tx <a>"), "text 0+4; element 4+3 [a]");
    EXPECT_EQ(Scans(L" >"), "text 0+2");
}

TEST(ScannerText, TextEndsBeforeTheNextTag) {
    EXPECT_EQ(Scans(L"a > b & c]]><a>"), "text 0+12; element 12+3 [a]");
    EXPECT_EQ(Scans(std::wstring_view(L"a\0b<c>", 6)), "text 0+3; element 3+3 [c]");
}

TEST(ScannerText, OnlyFourUnitsAreWhiteSpace) {
    for (wchar_t unit = 1; unit < 0x3000; ++unit) {
        if (unit == L'<') {
            continue;
        }
        const bool space = unit == 9 || unit == 10 || unit == 13 || unit == 32;
        EXPECT_EQ(Scans(std::wstring(1, unit)), space ? "space 0+1" : "text 0+1") << int(unit);
    }
}

// ---- After '<'

TEST(ScannerTag, ANameBeginsAboveNineExceptForAFew) {
    const std::wstring refused = L";<=>?@[\\]^`";
    for (wchar_t unit = 1; unit < 0x300; ++unit) {
        if (unit == L'/' || unit == L'!' || unit == L'?') {
            continue;
        }
        const bool name = unit > L'9' && refused.find(unit) == std::wstring::npos;
        const std::string scans = Scans(std::wstring(L"<") + unit + L"b>");
        EXPECT_EQ(scans.substr(0, 7), name ? "element" : "error 0") << int(unit) << scans;
        EXPECT_EQ(StartsTagName(unit), name) << int(unit);
    }
}

TEST(ScannerTag, ABadFirstCharacterIsReportedWithItsOffset) {
    EXPECT_EQ(Scans(L"x<1>y"), "text 0+1; error 1+3 {<first_tag_syntax offset=\"2\"/>}; text 4+1");
    EXPECT_EQ(Scans(L"< a>"), "error 0+4 {<first_tag_syntax offset=\"1\"/>}");
}

TEST(ScannerTag, AnEmptyTagEndsAtItsGreaterAndATagAfterALoneLessIsKept) {
    EXPECT_EQ(Scans(L"<>b"), "error 0+2 {<first_tag_syntax offset=\"1\"/>}; text 2+1");
    EXPECT_EQ(Scans(L"<<a>"), "error 0+1 {<first_tag_syntax offset=\"1\"/>}; element 1+3 [a]");
}

TEST(ScannerTag, ABadTagEndsBeforeTheNextTag) {
    EXPECT_EQ(Scans(L"<1 b='<a>"), "error 0+6 {<first_tag_syntax offset=\"1\"/>}; element 6+3 [a]");
}

TEST(ScannerTag, AnEndTagsNameBeginsAfterTheSlash) {
    EXPECT_EQ(Scans(L"</a>"), "end 0+4 [a]");
    EXPECT_EQ(Scans(L"</a b>"), "end 0+6 [a]");
    EXPECT_EQ(Scans(L"</>"), "end 0+3 []");
    EXPECT_EQ(Scans(L"</ a>"), "end 0+5 []");
    EXPECT_EQ(Scans(L"</a/>"), "end 0+5 [a]");
    EXPECT_EQ(Scans(L"</1>"), "end 0+4 [1]");
    EXPECT_EQ(Scans(L"</a b='>'>"), "end 0+8 [a]; text 8+2");
}

TEST(ScannerTag, AnInstructionEndsWithQuestionMarkAndGreater) {
    EXPECT_EQ(Scans(L"<?xml a='>' > ?><b>"), "instruction 0+16 [xml]; element 16+3 [b]");
    EXPECT_EQ(Scans(L"<?xml?>"), "instruction 0+7 [xml]");
    EXPECT_EQ(Scans(L"<?\?>"), "instruction 0+4 []");
    EXPECT_EQ(Scans(L"<?>"), "instruction 0+3 []");
}

TEST(ScannerTag, ANameEndsAtWhiteSpaceSlashOrGreater) {
    EXPECT_EQ(Scans(L"<a\tb>"), "element 0+5 [a]");
    EXPECT_EQ(Scans(L"<a\nb>"), "element 0+5 [a]");
    EXPECT_EQ(Scans(L"<a/b>"), "element 0+5 [a]");
    EXPECT_EQ(Scans(L"<a:b.c-d;e=\"f>"), "element 0+14 [a:b.c-d;e=\"f]");
    EXPECT_EQ(Scans(L"<a<b>"), "element 0+5 [a<b]");
}

// ---- After "<!"

TEST(ScannerMarkup, CommentsEndWithTwoDashesAndGreater) {
    EXPECT_EQ(Scans(L"<!-- > <a> -- -> --><b>"), "comment 0+20; element 20+3 [b]");
    EXPECT_EQ(Scans(L"<!---->"), "comment 0+7");
    EXPECT_EQ(Scans(L"<!-->"), "comment 0+5");
}

TEST(ScannerMarkup, ABadCommentIsReportedAndScanningContinuesAtTheNextTag) {
    EXPECT_EQ(Scans(L"<!-x<a>"), "error 0+4 {<comment_tag_syntax offset=\"3\"/>}; element 4+3 [a]");
    EXPECT_EQ(Scans(L"<!-x>a"), "error 0+5 {<comment_tag_syntax offset=\"3\"/>}; text 5+1");
    EXPECT_EQ(Scans(L"<!->a"), "error 0+4 {<comment_tag_syntax offset=\"3\"/>}; text 4+1");
}

TEST(ScannerMarkup, CdataEndsWithTwoBracketsAndGreater) {
    EXPECT_EQ(Scans(L"<![CDATA[<a>]> ]]]]><b>"), "cdata 0+20; element 20+3 [b]");
    EXPECT_EQ(Scans(L"<![C]]>"), "cdata 0+7");
    EXPECT_EQ(Scans(L"<![D]]>a"), "error 0+7 {<cdata_section_syntax offset=\"3\"/>}; text 7+1");
    EXPECT_EQ(Scans(L"<![<b>"),
              "error 0+3 {<cdata_section_syntax offset=\"3\"/>}; element 3+3 [b]");
}

TEST(ScannerMarkup, AnyOtherUnitAfterTheExclamationMarkIsReported) {
    EXPECT_EQ(Scans(L"<!x>a"), "error 0+4 {<exclamation_tag_syntax offset=\"2\"/>}; text 4+1");
    EXPECT_EQ(Scans(L"<!d>a"), "error 0+4 {<exclamation_tag_syntax offset=\"2\"/>}; text 4+1");
    EXPECT_EQ(Scans(L"<!ENTITY>"), "error 0+9 {<exclamation_tag_syntax offset=\"2\"/>}");
    EXPECT_EQ(Scans(L"<!>a"), "error 0+3 {<exclamation_tag_syntax offset=\"2\"/>}; text 3+1");
}

// ---- Document types

TEST(ScannerDocType, EndsAtItsOwnGreater) {
    EXPECT_EQ(Scans(L"<!DOCTYPE a><a>"), "doctype 0+12; element 12+3 [a]");
    EXPECT_EQ(Scans(L"<!D>"), "doctype 0+4");
}

TEST(ScannerDocType, NestedDeclarationsDontEndIt) {
    EXPECT_EQ(Scans(L"<!DOCTYPE a [<!ENTITY b 'c'><!ATTLIST a><!NOTATION n><?p > ?>]><a>"),
              "doctype 0+63; element 63+3 [a]");
    EXPECT_EQ(Scans(L"<!DOCTYPE a [<!-- > ' -->\n<b/></b>]><a>"), "doctype 0+36; element 36+3 [a]");
}

TEST(ScannerDocType, QuotesToggleAndAreIgnoredInsideTheOtherKind) {
    EXPECT_EQ(Scans(L"<!DOCTYPE a 'x>y' \"'>\"><a>"), "doctype 0+23; element 23+3 [a]");
    EXPECT_EQ(Scans(L"<!DOCTYPE a [<!ENTITY b '\">'>]><a>"), "doctype 0+31; element 31+3 [a]");
    EXPECT_EQ(Scans(L"<!DOCTYPE a \"<\"><a>"), "doctype 0+16; element 16+3 [a]");
}

TEST(ScannerDocType, QuotesInItsCommentsAndInstructionsOpenNothing) {
    EXPECT_EQ(Scans(L"<!DOCTYPE a [<!-- don't -->]><a>"), "doctype 0+29; element 29+3 [a]");
    EXPECT_EQ(Scans(L"<!DOCTYPE a [<?p \" ?>]><a>"), "doctype 0+23; element 23+3 [a]");
}

TEST(ScannerDocType, OtherDeclarationsAreReportedAndTheDocumentTypeIsMalformed) {
    EXPECT_EQ(Scans(L"<!DOCTYPE a [<!X>]><a>"),
              "error 0+19 {<doctype_tag_syntax offset=\"15\"/>}; element 19+3 [a]");
    EXPECT_EQ(Scans(L"<!DOCTYPE a [<![INCLUDE[]]>]><a>"),
              "error 0+29 {<doctype_tag_syntax offset=\"15\"/>}; element 29+3 [a]");
    EXPECT_EQ(Scans(L"<!DOCTYPE a [<!D>]>"), "error 0+19 {<doctype_tag_syntax offset=\"15\"/>}");
    EXPECT_EQ(Scans(L"<!DOCTYPE a [<!-x>]>"), "error 0+20 {<comment_tag_syntax offset=\"16\"/>}");
    EXPECT_EQ(Scans(L"<!DOCTYPE a [<1>]>"), "error 0+18 {<first_tag_syntax offset=\"14\"/>}");
}

TEST(ScannerDocType, ABadDeclarationWithoutEndStopsItAtTheNextTag) {
    EXPECT_EQ(Scans(L"<!DOCTYPE a [<!X <a>"),
              "error 0+17 {<doctype_tag_syntax offset=\"15\"/>}; element 17+3 [a]");
}

// ---- The end of a start tag

TEST(ScannerStartTag, ASlashBeforeTheEndMakesAnEmptyElement) {
    EXPECT_EQ(Scans(L"<a/>"), "element 0+4 [a] empty");
    EXPECT_EQ(Scans(L"<a />"), "element 0+5 [a] empty");
    EXPECT_EQ(Scans(L"<a href=\"x\"/>"), "element 0+13 [a] empty");
    EXPECT_EQ(Scans(L"<a / >"), "element 0+6 [a]");
    EXPECT_EQ(Scans(L"<a b/>"), "element 0+6 [a] empty");
}

TEST(ScannerStartTag, TheSlashOfAnUnquotedValueIsTheValues) {
    EXPECT_EQ(Scans(L"<a href=x/>"), "element 0+11 [a]");
    EXPECT_EQ(Scans(L"<a href=/>"), "element 0+10 [a]");
    EXPECT_EQ(Scans(L"<a href= />"), "element 0+11 [a] empty");
    EXPECT_EQ(Scans(L"<a href=x />"), "element 0+12 [a] empty");
    EXPECT_EQ(Scans(L"<a href=x\"/>"), "element 0+12 [a] empty");
    EXPECT_EQ(Scans(L"<a href=x'/>"), "element 0+12 [a] empty");
}

TEST(ScannerStartTag, GreaterInAQuotedValueDoesNotEndTheTag) {
    EXPECT_EQ(Scans(L"<a b=\"1>2\" c='3>4'>"), "element 0+19 [a]");
    EXPECT_EQ(Scans(L"<a b = \"'>\">"), "element 0+12 [a]");
    EXPECT_EQ(Scans(L"<a b=\n'\">'>"), "element 0+11 [a]");
}

TEST(ScannerStartTag, AQuoteThatIsNotAfterEqualsOpensNothing) {
    EXPECT_EQ(Scans(L"<a \"b>c"), "element 0+6 [a]; text 6+1");
    EXPECT_EQ(Scans(L"<a b='1''>'>"), "element 0+10 [a]; text 10+2");
    EXPECT_EQ(Scans(L"<a b=c'>'>"), "element 0+8 [a]; text 8+2");
}

TEST(ScannerStartTag, ASecondEqualsRightAfterTheFirstOpensAnUnquotedValue) {
    EXPECT_EQ(Scans(L"<a b==\"x>y\">"), "element 0+9 [a]; text 9+3");
    EXPECT_EQ(Scans(L"<a b= =\"x>y\">"), "element 0+13 [a]");
}

TEST(ScannerStartTag, EqualsWithoutANameOpensAValueToo) {
    EXPECT_EQ(Scans(L"<a =\"x>y\">"), "element 0+10 [a]");
    EXPECT_EQ(Scans(L"<a=\"x>y"), "element 0+6 [a=\"x]; text 6+1");
}

TEST(ScannerStartTag, WhiteSpaceClosesAnUnquotedValue) {
    EXPECT_EQ(Scans(L"<a b=c d=\">\">"), "element 0+13 [a]");
    EXPECT_EQ(Scans(L"<a b=c=\">\">"), "element 0+9 [a]; text 9+2");
    EXPECT_EQ(Scans(L"<a b=>c"), "element 0+6 [a]; text 6+1");
    EXPECT_EQ(Scans(L"<a b= >c"), "element 0+7 [a]; text 7+1");
}

TEST(ScannerStartTag, ValuesMayFollowEachOtherDirectly) {
    EXPECT_EQ(Scans(L"<a b='>'c='>'/>"), "element 0+15 [a] empty");
}

TEST(ScannerReports, AreLeftOutWhenNobodyTakesThem) {
    TagScanner scanner(L"<1><", 4, 0);
    scanner.reports = false;
    NodeScan scan;
    EXPECT_EQ(scanner.NextNode(scan), kNodeScanError);
    EXPECT_EQ(scanner.NextNode(scan), kNodeScanError);
    EXPECT_TRUE(scan.report.empty());
    EXPECT_EQ(scanner.NextNode(scan), kNodeEndOfText);
}

TEST(ScannerReports, AreThoseOfOneStep) {
    TagScanner scanner(L"<1>a", 4, 0);
    NodeScan scan;
    scanner.NextNode(scan);
    EXPECT_FALSE(scan.report.empty());
    EXPECT_EQ(scanner.NextNode(scan), kNodeText);
    EXPECT_TRUE(scan.report.empty());
}

} // namespace
} // namespace ObLibX
