#include "ObLibX/src/xml/scan/DocumentReport.h"

#include <charconv>
#include <string>
#include <string_view>

#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/AttributeIterator.h"
#include "ObLibX/src/xml/scan/DocumentConstants.h"
#include "ObLibX/src/xml/scan/TextCoding.h"

namespace ObLibX {
namespace {

constexpr std::wstring_view kTagEnd = L"/>";

struct Attribute {
    std::uint32_t flag; // 0: when none of the other flags of its kind is set
    const wchar_t* name;
};
constexpr Attribute kOfValue[] = {
    {kReportMsg, L"msg"}, {kReportType, L"type"}, {kReportEncoding, L"encoding"}, {0, L"tagname"}};
constexpr Attribute kOfNumber[] = {
    {kReportN, L"n"}, {kReportCount, L"count"}, {kReportLength, L"length"}, {0, L"offset"}};
constexpr std::uint32_t kValueFlags = kReportMsg | kReportType | kReportEncoding;
constexpr std::uint32_t kNumberFlags = kReportN | kReportCount | kReportLength;

// As "%d" writes it.
std::wstring Decimal(std::int32_t number) {
    char digits[12];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, number);
    return std::wstring(digits, end.ptr);
}

// Where the value of an attribute is in `element`, which is <name a="v"/>, without the quotes.
// False when the element doesn't have the attribute; the place is then that of a new one, after the
// last.
bool FindValue(const std::wstring& element, std::wstring_view name, std::size_t& start,
               std::size_t& end) {
    const wchar_t* const text = element.data();
    AttributeIterator attributes(text, text + 1, text + element.size());
    attributes.Name(); // the element's own
    UnitSpan found;
    UnitSpan value;
    while (attributes.Next(found, value)) {
        if (std::wstring_view(found.start, static_cast<std::size_t>(found.end - found.start)) ==
            name) {
            start = static_cast<std::size_t>(value.start - text);
            end = static_cast<std::size_t>(value.end - text);
            return true;
        }
    }
    start = end = element.size() - kTagEnd.size();
    return false;
}

// An attribute that would make the tag longer than a record can describe is left out.
void SetAttribute(std::wstring& element, std::wstring_view name, const std::wstring& encoded) {
    std::size_t start = 0;
    std::size_t end = 0;
    std::wstring change;
    if (FindValue(element, name, start, end)) {
        change = encoded;
    } else {
        change.append(L" ").append(name).append(L"=\"").append(encoded).append(L"\"");
    }
    if (element.size() - (end - start) + change.size() <= kLongestStartTag) {
        element.replace(start, end - start, change);
    }
}

void SetAttributes(std::wstring& element, const Attribute (&attributes)[4], std::uint32_t flags,
                   std::wstring_view value) {
    const std::wstring encoded = EncodeText(value, kEncodeAttribute);
    for (const Attribute& attribute : attributes) {
        if (attribute.flag == 0 ? flags == 0 : (flags & attribute.flag) != 0) {
            SetAttribute(element, attribute.name, encoded);
        }
    }
}

// The offset of the last element of that name. A '<' in a report always begins a tag, as values are
// encoded.
std::size_t FindLast(std::wstring_view report, std::wstring_view name) {
    for (std::size_t at = report.rfind(L'<'); at != std::wstring_view::npos;
         at = report.substr(0, at).rfind(L'<')) {
        const std::wstring_view tag = report.substr(at + 1);
        if (tag.size() > name.size() && tag.starts_with(name) && EndsName(tag[name.size()])) {
            return at;
        }
    }
    return std::wstring_view::npos;
}

} // namespace

void Report(std::wstring& report, const wchar_t* name, const wchar_t* value, std::uint32_t flags,
            std::int32_t number, std::int32_t number2) {
    if (report.size() >= kReportLimit) {
        return;
    }
    const bool updates = (flags & kReportUpdate) != 0;
    const std::size_t start = updates ? FindLast(report, name) : report.size();
    if (start == std::wstring::npos) {
        return;
    }
    const std::size_t length = updates ? report.find(L'>', start) + 1 - start : 0;
    std::wstring element =
        updates ? report.substr(start, length) : std::wstring(L"<").append(name).append(kTagEnd);
    if (value != nullptr) {
        SetAttributes(element, kOfValue, flags & kValueFlags, value);
    }
    if (number != -1) {
        SetAttributes(element, kOfNumber, flags & kNumberFlags, Decimal(number));
    }
    if (number2 != -1) {
        SetAttribute(element, L"offset2", Decimal(number2));
    }
    report.replace(start, length, updates ? element : element.append(kLineEnd));
}

} // namespace ObLibX
