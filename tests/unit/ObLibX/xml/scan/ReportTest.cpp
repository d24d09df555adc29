#include <gtest/gtest.h>

#include <set>

#include "ObLibX/src/xml/scan/DocumentConstants.h"
#include "ObLibX/src/xml/scan/DocumentReport.h"
#include "tests/unit/ObLibX/xml/document/Records.h"
#include "tests/unit/ObLibX/xml/scan/Scans.h"

namespace ObLibX {
namespace {

std::string Written(const wchar_t* name, const wchar_t* value, std::uint32_t flags,
                    std::int32_t number = -1, std::int32_t number2 = -1) {
    std::wstring report;
    Report(report, name, value, flags, number, number2);
    return Narrow(report);
}

TEST(DocumentReport, WritesAnElementOnALineOfItsOwn) {
    EXPECT_EQ(Written(L"no_root_element", nullptr, 0), "<no_root_element/>\r\n");
}

TEST(DocumentReport, TheFlagsNameTheAttributeOfTheValue) {
    EXPECT_EQ(Written(L"e", L"v", kReportMsg), "<e msg=\"v\"/>\r\n");
    EXPECT_EQ(Written(L"e", L"v", kReportType), "<e type=\"v\"/>\r\n");
    EXPECT_EQ(Written(L"e", L"v", kReportEncoding), "<e encoding=\"v\"/>\r\n");
    EXPECT_EQ(Written(L"e", L"v", 0), "<e tagname=\"v\"/>\r\n");
    EXPECT_EQ(Written(L"e", L"v", kReportCount), "<e tagname=\"v\"/>\r\n");
    EXPECT_EQ(Written(L"e", nullptr, kReportMsg | kReportType | kReportEncoding), "<e/>\r\n");
}

TEST(DocumentReport, TheFlagsNameTheAttributeOfTheNumber) {
    EXPECT_EQ(Written(L"e", nullptr, kReportN, 5), "<e n=\"5\"/>\r\n");
    EXPECT_EQ(Written(L"e", nullptr, kReportCount, 5), "<e count=\"5\"/>\r\n");
    EXPECT_EQ(Written(L"e", nullptr, kReportLength, 0), "<e length=\"0\"/>\r\n");
    EXPECT_EQ(Written(L"e", nullptr, 0, 5), "<e offset=\"5\"/>\r\n");
    EXPECT_EQ(Written(L"e", nullptr, kReportType, 5), "<e offset=\"5\"/>\r\n");
    EXPECT_EQ(Written(L"e", nullptr, 0, -1), "<e/>\r\n");
}

TEST(DocumentReport, AttributesAreInTheirOrder) {
    EXPECT_EQ(Written(L"e", L"v", 0, 1, 2), "<e tagname=\"v\" offset=\"1\" offset2=\"2\"/>\r\n");
    EXPECT_EQ(Written(L"e", L"v", kReportEncoding | kReportLength, 7, 8),
              "<e encoding=\"v\" length=\"7\" offset2=\"8\"/>\r\n");
    EXPECT_EQ(Written(L"e", L"v", kReportMsg | kReportN, 3), "<e msg=\"v\" n=\"3\"/>\r\n");
    EXPECT_EQ(Written(L"e", nullptr, 0, -1, 2), "<e offset2=\"2\"/>\r\n");
    EXPECT_EQ(Written(L"e", L"v", kReportMsg | kReportType | kReportEncoding),
              "<e msg=\"v\" type=\"v\" encoding=\"v\"/>\r\n");
}

TEST(DocumentReport, NumbersAreDecimalWithTheirSign) {
    EXPECT_EQ(Written(L"e", nullptr, 0, 2147483647, -2147483647 - 1),
              "<e offset=\"2147483647\" offset2=\"-2147483648\"/>\r\n");
}

TEST(DocumentReport, ValuesAreEncoded) {
    EXPECT_EQ(Written(L"e", L"a\"<&>'b", 0), "<e tagname=\"a&quot;&lt;&amp;&gt;&apos;b\"/>\r\n");
}

TEST(DocumentReport, ElementsFollowEachOther) {
    std::wstring report;
    Report(report, L"a", L"x", 0, 1);
    Report(report, L"b", nullptr, 0);
    Report(report, L"a", L"y", kReportType);
    EXPECT_EQ(Narrow(report), "<a tagname=\"x\" offset=\"1\"/>\r\n<b/>\r\n<a type=\"y\"/>\r\n");
}

TEST(DocumentReport, AnUpdateChangesTheLastElementOfThatName) {
    std::wstring report;
    Report(report, L"read", L"A", kReportEncoding | kReportLength, 10);
    Report(report, L"read", L"B", kReportEncoding | kReportLength, 20);
    Report(report, L"reads", nullptr, 0);
    Report(report, L"read", L"C", kReportEncoding | kReportLength | kReportUpdate, 19);
    EXPECT_EQ(Narrow(report), "<read encoding=\"A\" length=\"10\"/>\r\n"
                              "<read encoding=\"C\" length=\"19\"/>\r\n<reads/>\r\n");
    Report(report, L"reads", nullptr, kReportUpdate | kReportCount, 3);
    EXPECT_EQ(Narrow(report), "<read encoding=\"A\" length=\"10\"/>\r\n"
                              "<read encoding=\"C\" length=\"19\"/>\r\n<reads count=\"3\"/>\r\n");
}

TEST(DocumentReport, AnUpdateFindsAttributesAndNotTheTextOfValues) {
    std::wstring report;
    Report(report, L"read", L" length=", kReportMsg);
    Report(report, L"read", nullptr, kReportUpdate | kReportLength, 4);
    EXPECT_EQ(Narrow(report), "<read msg=\" length=\" length=\"4\"/>\r\n");
    Report(report, L"read", L"<read length=\"9\"/>", kReportUpdate | kReportMsg | kReportLength, 5);
    EXPECT_EQ(Narrow(report),
              "<read msg=\"&lt;read length=&quot;9&quot;/&gt;\" length=\"5\"/>\r\n");
}

TEST(DocumentReport, AnAttributeThatMakesTheTagTooLongForARecordIsLeftOut) {
    constexpr std::size_t kRest = std::size("<e tagname=\"\"/>") - 1;
    std::wstring value(kLongestStartTag - kRest, L'x');
    std::wstring report;
    Report(report, L"e", value.c_str(), 0);
    EXPECT_EQ(report.size(), kLongestStartTag + 2);
    value += L'x';
    report.clear();
    Report(report, L"e", value.c_str(), 0, 7);
    EXPECT_EQ(Narrow(report), "<e offset=\"7\"/>\r\n");
}

TEST(DocumentReport, AnUpdateOfNothingAddsNothing) {
    std::wstring report;
    Report(report, L"read", L"A", kReportEncoding | kReportUpdate);
    EXPECT_TRUE(report.empty());
    Report(report, L"write", nullptr, 0);
    Report(report, L"read", L"A", kReportEncoding | kReportUpdate);
    EXPECT_EQ(Narrow(report), "<write/>\r\n");
}

TEST(DocumentReport, TheLimitIsCheckedBeforeAnElementIsAdded) {
    std::wstring report = L"<a b='" + std::wstring(991, L'x') + L"'/>";
    report.pop_back();
    report += L">";
    ASSERT_EQ(report.size(), 1000u);
    const std::wstring full = report;
    Report(report, L"e", nullptr, 0);
    Report(report, L"a", L"y", kReportUpdate);
    EXPECT_EQ(report, full);
    report = L"<a b='" + std::wstring(990, L'x') + L"'/>";
    ASSERT_EQ(report.size(), 999u);
    Report(report, L"e", nullptr, 0);
    EXPECT_GT(report.size(), 1000u) << "the last one may go over";
    const std::wstring over = report;
    Report(report, L"e", nullptr, 0);
    EXPECT_EQ(report, over);
}

// ---- The words for people

TEST(DocumentReportTexts, AreThoseOfTheirIds) {
    const auto text = [](const wchar_t* element) {
        const ReportText* found = FindReportText(element);
        return found == nullptr ? "none" : std::to_string(found->id) + " " + Narrow(found->text);
    };
    EXPECT_EQ(text(L"root_has_sibling"), "62001 Root element has sibling");
    EXPECT_EQ(text(L"no_root_element"), "62002 No root element");
    EXPECT_EQ(text(L""), "62003 Empty document");
    EXPECT_EQ(text(L"lone_end_tag"), "62004 Lone end tag '%s' at offset %d");
    EXPECT_EQ(text(L"unended_start_tag"),
              "62005 Start tag '%s' at offset %d expecting end tag at offset %d");
    EXPECT_EQ(text(L"unterminated_tag_syntax"), "62007 Unterminated tag at offset %d");
    EXPECT_EQ(text(L"first_tag_syntax"),
              "62095 Tag syntax error at offset %d expecting tag name / ! or ?");
    EXPECT_EQ(text(L"exclamation_tag_syntax"),
              "62096 Tag syntax error at offset %d expecting 'DOCTYPE' [ or -");
    EXPECT_EQ(text(L"doctype_tag_syntax"),
              "62097 Tag syntax error at offset %d expecting markup declaration");
    EXPECT_EQ(text(L"comment_tag_syntax"),
              "62098 Tag syntax error at offset %d expecting - to begin comment");
    EXPECT_EQ(text(L"cdata_section_syntax"),
              "62099 Tag syntax error at offset %d expecting 'CDATA'");
    EXPECT_EQ(text(L"tag_too_long"), "none");
}

TEST(DocumentReportTexts, HaveOneIdEachInOrder) {
    EXPECT_EQ(std::size(kReportTexts), 11u);
    std::uint32_t before = 62000;
    for (const ReportText& text : kReportTexts) {
        EXPECT_GT(text.id, before);
        EXPECT_NE(text.id, 62006u);
        before = text.id;
    }
    EXPECT_EQ(before, 62099u);
}

// Every element that the parser writes and that has a text.
TEST(DocumentReportTexts, EveryReportOfTheParserHasOne) {
    std::set<std::wstring> written;
    for (const wchar_t* text : {L"<a/><b/>", L" ", L"</a>", L"<a>", L"<a", L"<1>", L"<!x>",
                                L"<!DOCTYPE a [<!x>]>", L"<!-x>", L"<![x>"}) {
        XmlOffsetDocument document;
        EXPECT_FALSE(document.SetText(text));
        XmlOffsetDocument reports;
        reports.SetText(std::wstring_view(document.Result()));
        while (reports.FindElement()) {
            written.insert(reports.GetTagName());
        }
    }
    EXPECT_EQ(written.size(), 10u);
    for (const std::wstring& name : written) {
        EXPECT_NE(FindReportText(name), nullptr) << Narrow(name);
    }
}

} // namespace
} // namespace ObLibX
