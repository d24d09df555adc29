#include "ObLibX/src/xml/document/NewElement.h"

#include <string_view>

#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/TextCoding.h"

namespace ObLibX {
namespace {

constexpr std::wstring_view kCdataBegin = L"<![CDATA[";
constexpr std::wstring_view kCdataEnd = L"]]>";
constexpr std::wstring_view kCdataSplit = L"]]]]><![CDATA[>";
constexpr std::size_t kStartTagMarks = 2; // < >

void AppendCdata(std::wstring& out, std::wstring_view value) {
    out += kCdataBegin;
    for (std::size_t at = 0;;) {
        const std::size_t end = value.find(kCdataEnd, at);
        out += value.substr(at, end - at);
        if (end == std::wstring_view::npos) break;
        out += kCdataSplit;
        at = end + kCdataEnd.size();
    }
    out += kCdataEnd;
}

bool WriteWithValue(std::wstring_view name, std::wstring_view value, std::uint32_t flags,
                    NewElement& element) {
    if (name.size() + kEndTagMarks > kLongestEndTag) return false;
    element.startTag = static_cast<std::uint32_t>(name.size() + kStartTagMarks);
    element.endTag = static_cast<std::uint32_t>(name.size() + kEndTagMarks);
    element.text.append(L"<").append(name).append(L">");
    if ((flags & kAddCdata) != 0) {
        AppendCdata(element.text, value);
    } else {
        element.text += EncodeText(value, flags & kEncodeKeepReferences);
    }
    element.text.append(L"</").append(name).append(L">");
    return true;
}

bool WriteSingleTag(std::wstring_view name, std::uint32_t flags, NewElement& element) {
    element.ended = (flags & kAddNoEndTag) == 0;
    const bool blank = (flags & kAddBlankInEmpty) != 0;
    const wchar_t* const end = !element.ended ? L">" : blank ? L" />" : L"/>";
    element.text.append(L"<").append(name).append(end);
    if (element.text.size() > kLongestStartTag) return false;
    element.startTag = static_cast<std::uint32_t>(element.text.size());
    return true;
}

} // namespace

void NewElement::FillRecord(ElementRecord& record, std::size_t start) const {
    record.start = static_cast<std::uint32_t>(start);
    record.length = static_cast<std::uint32_t>(text.size());
    record.SetTagLengths(startTag, endTag);
    record.flagsAndLevel = ended ? 0 : kRecordUnended;
}

bool WriteElement(const wchar_t* name, const wchar_t* value, std::uint32_t flags,
                  NewElement& element) {
    if (name == nullptr || !IsWritableName(name) || !StartsTagName(*name)) return false;
    if (value == nullptr || *value == L'\0') return WriteSingleTag(name, flags, element);
    return (flags & kAddNoEndTag) == 0 && WriteWithValue(name, value, flags, element);
}

} // namespace ObLibX
