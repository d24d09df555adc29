// The result report: sibling XML elements, one for everything that was wrong or done.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ObLibX {

// Which attributes a report gets. In this order: the value as msg, type, encoding or tagname; the
// number as n, count, length or offset; number2 as offset2.
inline constexpr std::uint32_t kReportCount = 0x1;
inline constexpr std::uint32_t kReportType = 0x2;
inline constexpr std::uint32_t kReportN = 0x4;
inline constexpr std::uint32_t kReportEncoding = 0x8;
inline constexpr std::uint32_t kReportLength = 0x10;
inline constexpr std::uint32_t kReportUpdate =
    0x20; // no new element: the last one of that name changes
inline constexpr std::uint32_t kReportMsg = 0x40;

// A report that has this many units takes no more, so that a very broken document stays cheap.
inline constexpr std::size_t kReportLimit = 1000;

// Appends <name .../> to `report` as long as `report` has fewer than kReportLimit units; the length
// is checked before, so the last element may pass the limit. A null `value`, and a `number` or
// `number2` of -1, give no attribute. An attribute that would make its tag longer than
// kLongestStartTag is left out. Throws std::bad_alloc and leaves `report` as it was.
void Report(std::wstring& report, const wchar_t* name, const wchar_t* value, std::uint32_t flags,
            std::int32_t number = -1, std::int32_t number2 = -1);

// ---- The words in which a client shows the reports to people

// In `text`, %s is for the report's tagname, the first %d for its offset and the second for its
// offset2; the client formats it. The ids are those of the client's string table.
struct ReportText {
    std::wstring_view element; // name of the report's element; empty for an empty text
    std::uint32_t id;
    const wchar_t* text;
};

inline constexpr ReportText kReportTexts[] = {
    {L"root_has_sibling", 62001, L"Root element has sibling"},
    {L"no_root_element", 62002, L"No root element"},
    {L"", 62003, L"Empty document"},
    {L"lone_end_tag", 62004, L"Lone end tag '%s' at offset %d"},
    {L"unended_start_tag", 62005, L"Start tag '%s' at offset %d expecting end tag at offset %d"},
    {L"unterminated_tag_syntax", 62007, L"Unterminated tag at offset %d"},
    {L"first_tag_syntax", 62095, L"Tag syntax error at offset %d expecting tag name / ! or ?"},
    {L"exclamation_tag_syntax", 62096, L"Tag syntax error at offset %d expecting 'DOCTYPE' [ or -"},
    {L"doctype_tag_syntax", 62097, L"Tag syntax error at offset %d expecting markup declaration"},
    {L"comment_tag_syntax", 62098, L"Tag syntax error at offset %d expecting - to begin comment"},
    {L"cdata_section_syntax", 62099, L"Tag syntax error at offset %d expecting 'CDATA'"},
};

// The text for an element of a report, null when there is none.
constexpr const ReportText* FindReportText(std::wstring_view element) {
    for (const ReportText& text : kReportTexts) {
        if (text.element == element) {
            return &text;
        }
    }
    return nullptr;
}

} // namespace ObLibX
