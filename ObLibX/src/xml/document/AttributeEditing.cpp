#include "ObLibX/src/xml/document/AttributeEditing.h"

#include <optional>
#include <string_view>

#include "ObLibX/src/xml/document/ElementText.h"
#include "ObLibX/src/xml/document/Shifting.h"
#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/AttributeIterator.h"
#include "ObLibX/src/xml/scan/TextCoding.h"

namespace ObLibX {
namespace {

struct AttributeChange {
    std::size_t offset = 0;
    std::size_t removed = 0;
    std::wstring text;
};

// Puts a value in the place of the attribute's own. An attribute without '=' has its name as value;
// it keeps the name and gets a '='. `after` is past the value and its closing quote.
void ReplaceValue(const wchar_t* text, const UnitSpan& name, const UnitSpan& value,
                  const wchar_t* after, AttributeChange& change) {
    if (value.start == name.start) {
        change.offset = static_cast<std::size_t>(name.end - text);
        change.text = L"=";
        return;
    }
    const wchar_t* const start = value.quoted ? value.start - 1 : value.start;
    const wchar_t* const end = value.quoted ? after : value.end;
    change.offset = static_cast<std::size_t>(start - text);
    change.removed = static_cast<std::size_t>(end - start);
}

// False when the tag has no such attribute.
bool ReplaceAttribute(const DocumentState& document, const TagSpan& tag, std::wstring_view wanted,
                      AttributeChange& change) {
    const wchar_t* const text = document.text.data();
    AttributeIterator attributes(text, text + tag.nameEnd, text + tag.end);
    UnitSpan name;
    UnitSpan value;
    while (attributes.Next(name, value)) {
        if (static_cast<std::size_t>(name.end - name.start) == wanted.size() &&
            SameName(name.start, wanted.data(), wanted.size(), document.IgnoresCase())) {
            ReplaceValue(text, name, value, attributes.At(), change);
            return true;
        }
    }
    return false;
}

// Whether text added after the value would become a part of it: after a '=' that nothing follows,
// or after a quote without its second one, which only an instruction can contain.
bool SwallowsWhatFollows(const UnitSpan& value, const wchar_t* end) {
    return value.quoted ? value.end == end : value.start == value.end;
}

// The offset after the last token of the tag; or after the tag's name, when a new attribute after
// the last token would become a part of that token.
std::size_t AfterLastToken(const DocumentState& document, const TagSpan& tag) {
    const wchar_t* const text = document.text.data();
    const wchar_t* const end = text + tag.end;
    AttributeIterator attributes(text, text + tag.nameEnd, end);
    std::size_t after = tag.nameEnd;
    UnitSpan name;
    UnitSpan value;
    while (attributes.Next(name, value)) {
        if (SwallowsWhatFollows(value, end)) return tag.nameEnd;
        after = static_cast<std::size_t>((value.quoted ? attributes.At() : value.end) - text);
    }
    return after;
}

AttributeChange WriteAttribute(const DocumentState& document, const TagSpan& tag,
                               std::wstring_view name, std::wstring_view encoded) {
    AttributeChange change;
    if (!ReplaceAttribute(document, tag, name, change)) {
        change.offset = AfterLastToken(document, tag);
        change.text.append(L" ").append(name).append(L"=");
    }
    change.text.append(L"\"").append(encoded).append(L"\"");
    return change;
}

// Whether the start tag stays short enough for its record. An instruction has no length field.
bool TagStaysInBounds(const DocumentState& document, std::int32_t position,
                      const AttributeChange& change) {
    if (IsCurrentNode(document, position)) return true;
    const ElementRecord& record = RecordAt(document, position);
    const std::size_t length = record.StartTagLength() - change.removed + change.text.size();
    return !record.Has(kRecordBad) && length <= kLongestStartTag;
}

void ShiftForAttribute(DocumentState& document, std::int32_t position, std::int32_t delta) {
    if (IsCurrentNode(document, position)) {
        const auto offset = static_cast<std::size_t>(document.nodeOffset);
        document.nodeLength += delta;
        AdjustAfter(document, document.parentPos, offset, delta);
        return;
    }
    ElementRecord& record = RecordAt(document, position);
    const auto change = static_cast<std::uint32_t>(delta);
    record.SetTagLengths(record.StartTagLength() + change, record.EndTagLength());
    record.length += change;
    Adjust(document, position, delta, false);
}

} // namespace

bool SetAttribute(DocumentState& document, std::int32_t position, const wchar_t* name,
                  const wchar_t* value, std::uint32_t flags) {
    return !document.Has(kDocStreams) && EditAttribute(document, position, name, value, flags);
}

bool EditAttribute(DocumentState& document, std::int32_t position, const wchar_t* name,
                   const wchar_t* value, std::uint32_t flags) {
    if (name == nullptr || value == nullptr || !PositionsAreValid(document)) return false;
    const std::wstring_view attribute(name, CallerNameLength(name));
    if (!IsWritableName(attribute)) return false;
    const std::optional<TagSpan> tag = TagAt(document, position);
    // Without a target the attribute's name would become the target of the instruction.
    if (!tag || tag->nameStart == tag->nameEnd) return false;
    const std::wstring encoded =
        EncodeText(value, (flags & kEncodeKeepReferences) | kEncodeAttribute);
    const AttributeChange change = WriteAttribute(document, *tag, attribute, encoded);
    if (!TagStaysInBounds(document, position, change) ||
        !TextStaysInBounds(document, change.removed, change.text.size())) {
        return false;
    }
    Splice(document, change.offset, change.removed, change.text.data(), change.text.size());
    ShiftForAttribute(document, position,
                      static_cast<std::int32_t>(change.text.size()) -
                          static_cast<std::int32_t>(change.removed));
    return true;
}

} // namespace ObLibX
