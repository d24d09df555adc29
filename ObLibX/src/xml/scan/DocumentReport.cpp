#include "ObLibX/src/xml/scan/DocumentReport.h"

#include <charconv>

#include "ObLibX/src/xml/XmlOffsetDocument.h"
#include "ObLibX/src/xml/scan/TagScanner.h"

namespace ObLibX {
namespace {

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

// The last element of that name among the siblings at the top, 0 when there is none.
std::int32_t LastOfName(const XmlOffsetDocument& report, std::wstring_view name) {
    const ElementRecordTable& records = *report.State().records;
    const std::uint32_t first = records[0].firstChild;
    for (std::uint32_t at = first == 0 ? 0 : records[first].prev; at != 0; at = records[at].prev) {
        TagScanner scanner(report.Text().data(), report.Text().size(), report.Flags());
        scanner.cursor = static_cast<std::int32_t>(records[at].start) + 1;
        if (scanner.NextName() && scanner.TokenIs(name.data(), name.size())) {
            return static_cast<std::int32_t>(at);
        }
        if (at == first) {
            break;
        }
    }
    return 0;
}

// The element that takes the attributes, 0 when there is none.
std::int32_t ElementOf(XmlOffsetDocument& report, const wchar_t* name, std::uint32_t flags) {
    if ((flags & kReportUpdate) != 0) {
        return LastOfName(report, name);
    }
    return report.AddElement(name, nullptr) ? report.CurrentPosition() : 0;
}

void SetAttributes(XmlOffsetDocument& report, std::int32_t element,
                   const Attribute (&attributes)[4], std::uint32_t flags, const wchar_t* value) {
    for (const Attribute& attribute : attributes) {
        if (attribute.flag == 0 ? flags == 0 : (flags & attribute.flag) != 0) {
            report.SetAttribute(element, attribute.name, value);
        }
    }
}

} // namespace

void Report(std::wstring& report, const wchar_t* name, const wchar_t* value, std::uint32_t flags,
            std::int32_t number, std::int32_t number2) {
    if (report.size() >= kReportLimit) {
        return;
    }
    XmlOffsetDocument document;
    document.SetText(std::wstring_view(report));
    const std::int32_t element = ElementOf(document, name, flags);
    if (element == 0) {
        return;
    }
    if (value != nullptr) {
        SetAttributes(document, element, kOfValue, flags & kValueFlags, value);
    }
    if (number != -1) {
        SetAttributes(document, element, kOfNumber, flags & kNumberFlags, Decimal(number).c_str());
    }
    if (number2 != -1) {
        document.SetAttribute(element, L"offset2", Decimal(number2).c_str());
    }
    report.assign(document.Text());
}

} // namespace ObLibX
