#include "ObLibX/src/xml/document/ElementText.h"

#include "ObLibX/src/xml/names/XmlCharacters.h"

namespace ObLibX {
namespace {

constexpr std::size_t kInstructionBegin = 2; // "<?"
constexpr std::size_t kInstructionEnd = 2;   // "?>"

bool IsElementOrNone(const DocumentState& document, std::int32_t position) {
    return position == 0 || IsElement(document, position);
}

std::size_t SkipSpace(const std::wstring& text, std::size_t at, std::size_t end) {
    while (at < end && IsXmlSpace(text[at])) ++at;
    return at;
}

template <typename Ends>
TagSpan SpanFrom(const std::wstring& text, std::size_t start, std::size_t name, std::size_t end,
                 Ends ends) {
    TagSpan span{start, SkipSpace(text, name, end), 0, end};
    span.nameEnd = span.nameStart;
    while (span.nameEnd < end && !ends(text[span.nameEnd])) ++span.nameEnd;
    return span;
}

} // namespace

bool IsElement(const DocumentState& document, std::int32_t position) {
    return position > 0 && position < document.nextFreePos &&
           static_cast<std::uint32_t>(position) < document.records->Size() &&
           !(*document.records)[position].Has(kRecordFree);
}

bool PositionsHold(const DocumentState& document) {
    return IsElementOrNone(document, document.parentPos) &&
           IsElementOrNone(document, document.currentPos) &&
           IsElementOrNone(document, document.childPos) && document.records->Size() != 0;
}

bool IsCurrentNode(const DocumentState& document, std::int32_t position) {
    return document.nodeLength != 0 && position == document.currentPos;
}

std::wstring_view ElementName(const DocumentState& document, std::int32_t position) {
    const ElementRecord& record = (*document.records)[position];
    const TagSpan span = SpanFrom(document.text, record.start, record.start + 1,
                                  record.start + record.StartTagLength(), EndsName);
    return {document.text.data() + span.nameStart, span.nameEnd - span.nameStart};
}

std::optional<TagBounds> TagBoundsAt(const DocumentState& document, std::int32_t position) {
    if (!IsCurrentNode(document, position)) {
        if (!IsElement(document, position)) return std::nullopt;
        const ElementRecord& record = (*document.records)[position];
        // A stream has let go of the text of an element that it has passed.
        if (record.StartTagLength() == 0) return std::nullopt;
        return TagBounds{record.start, record.start + 1, record.start + record.StartTagLength(),
                         false};
    }
    const auto marks = static_cast<std::int32_t>(kInstructionBegin + kInstructionEnd);
    if (document.nodeType != kNodeInstruction || document.nodeLength < marks) return std::nullopt;
    const auto start = static_cast<std::size_t>(document.nodeOffset);
    const std::size_t end = start + static_cast<std::size_t>(document.nodeLength);
    return TagBounds{start, start + kInstructionBegin, end - kInstructionEnd, true};
}

std::optional<TagSpan> TagAt(const DocumentState& document, std::int32_t position) {
    const std::optional<TagBounds> tag = TagBoundsAt(document, position);
    if (!tag) return std::nullopt;
    return tag->instruction
               ? SpanFrom(document.text, tag->start, tag->nameFrom, tag->end, EndsName)
               : SpanFrom(document.text, tag->start, tag->nameFrom, tag->end, EndsTagName);
}

TagScanner ScannerBehindName(const DocumentState& document, const TagSpan& tag) {
    TagScanner scanner(document.text.data(), tag.end, document.docFlags);
    scanner.cursor = static_cast<std::int32_t>(tag.nameEnd);
    return scanner;
}

} // namespace ObLibX
