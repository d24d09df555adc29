#include "ObLibX/src/xml/document/AttributeEditing.h"

#include <optional>
#include <string_view>

#include "ObLibX/src/xml/document/ElementText.h"
#include "ObLibX/src/xml/document/Shifting.h"
#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/AttributeWalk.h"
#include "ObLibX/src/xml/scan/TextCoding.h"

namespace ObLibX {
namespace {

struct AttributeChange {
    std::size_t offset = 0;
    std::size_t removed = 0;
    std::wstring text;
};

// Whether the token that was found is what stands behind a '=', not an attribute's own name.
bool IsValueToken(const TagScanner& scanner, const TagSpan& tag) {
    if ((scanner.tokenFlags & kTokenQuoted) != 0) return true;
    auto at = static_cast<std::size_t>(scanner.tokenStart);
    while (at > tag.nameEnd && IsXmlSpace(scanner.textPointer[at - 1])) --at;
    return at > tag.nameEnd && scanner.textPointer[at - 1] == L'=';
}

void ReplaceValue(const TagScanner& scanner, const TagSpan& tag, AttributeChange& change) {
    const auto start = static_cast<std::size_t>(scanner.tokenStart);
    const auto end = static_cast<std::size_t>(scanner.tokenEnd + 1);
    if (!IsValueToken(scanner, tag)) {
        change.offset = end;
        change.text = L"=";
    } else if ((scanner.tokenFlags & kTokenQuoted) != 0) {
        change.offset = start - 1;
        change.removed = static_cast<std::size_t>(scanner.cursor) - change.offset;
    } else {
        change.offset = start;
        change.removed = end - start;
    }
}

// Whether the value waits for what stands behind it: a '=' that nothing follows, or a quote without
// its other one, which only an instruction can hold.
bool SwallowsWhatFollows(const UnitSpan& value, const wchar_t* end) {
    return value.quoted ? value.end == end : value.start == value.end;
}

// Behind the last token of the tag; behind the tag's name instead when the new attribute would be
// taken for a part of that token.
std::size_t BehindLastToken(const DocumentState& document, const TagSpan& tag) {
    const wchar_t* const text = document.text.data();
    const wchar_t* const end = text + tag.end;
    AttributeWalk walk(text, text + tag.nameEnd, end);
    std::size_t behind = tag.nameEnd;
    UnitSpan name;
    UnitSpan value;
    while (walk.Next(name, value)) {
        if (SwallowsWhatFollows(value, end)) return tag.nameEnd;
        behind = static_cast<std::size_t>((value.quoted ? walk.At() : value.end) - text);
    }
    return behind;
}

AttributeChange WriteAttribute(const DocumentState& document, const TagSpan& tag,
                               std::wstring_view name, std::wstring_view encoded) {
    AttributeChange change;
    TagScanner scanner = ScannerBehindName(document, tag);
    if (scanner.FindAttribute(name.data(), name.size())) {
        ReplaceValue(scanner, tag, change);
    } else {
        change.offset = BehindLastToken(document, tag);
        change.text.append(L" ").append(name).append(L"=");
    }
    change.text.append(L"\"").append(encoded).append(L"\"");
    return change;
}

// Whether a start tag can take the change; an instruction has no length field but the text's own.
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
        AdjustBehind(document, document.parentPos, offset, delta);
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
    const bool given = name != nullptr && value != nullptr && IsWritableName(name);
    if (!given || !PositionsHold(document)) return false;
    const std::optional<TagSpan> tag = TagAt(document, position);
    // The attribute's name would become the target of an instruction that has none.
    if (!tag || tag->nameStart == tag->nameEnd) return false;
    const std::wstring encoded =
        EncodeText(value, (flags & kEncodeKeepReferences) | kEncodeAttribute);
    const AttributeChange change = WriteAttribute(document, *tag, name, encoded);
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
