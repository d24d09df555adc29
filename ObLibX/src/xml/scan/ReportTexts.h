// The words in which a client shows a document's reports to people.
#pragma once

#include <cstdint>
#include <string_view>

namespace ObLibX {

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
