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

// At this many units a report takes no more: a very broken document stays cheap.
inline constexpr std::size_t kReportLimit = 1000;

// Appends <name .../> to `report`, unless it holds kReportLimit units or more already; that is
// asked before, so the last one may go over. `value` null: no attribute from it. `number` and
// `number2` -1: none. Throws std::bad_alloc and leaves `report` as it was.
void Report(std::wstring& report, const wchar_t* name, const wchar_t* value, std::uint32_t flags,
            std::int32_t number = -1, std::int32_t number2 = -1);

// ---- The words in which a client shows the reports to people

// `text` takes by %s the report's tagname and by each %d its offset and offset2, in this order; it
// is the client that puts them in. The ids are those of the client's string table.
struct ReportText {
    std::wstring_view element; // name of the report's element; empty: a text that was empty
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

// The text of a report's element, null when it has none.
constexpr const ReportText* FindReportText(std::wstring_view element) {
    for (const ReportText& text : kReportTexts) {
        if (text.element == element) {
            return &text;
        }
    }
    return nullptr;
}

} // namespace ObLibX
