#include "ObLibX/src/xml/document/ElementText.h"

#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/QuickScan.h"
#include "ObLibX/src/xml/scan/TextCoding.h"

namespace ObLibX {
namespace {

constexpr std::size_t kInstructionBegin = 2; // "<?"
constexpr std::size_t kInstructionEnd = 2;   // "?>"

bool IsElementOrNone(const DocumentState& document, std::int32_t position) {
    return position == 0 || IsElement(document, position);
}

// What begins a node or a reference.
struct LessOrAmpersand {
    bool One(wchar_t unit) const { return unit == L'<' || unit == L'&'; }
#if defined(__SSE2__)
    __m128i Eight(__m128i units) const {
        return _mm_or_si128(EqualTo{L'<'}.Eight(units), EqualTo{L'&'}.Eight(units));
    }
#endif
};

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

// ---- Nodes and content

// The lengths of the marks before and after the inside of a node.
struct NodeMarks {
    std::int32_t type;
    std::size_t before;
    std::size_t after;
};
constexpr NodeMarks kNodeMarks[] = {
    {kNodeComment, 4, 3},     // <!-- -->
    {kNodeInstruction, 2, 2}, // <? ?>
    {kNodeCdata, 9, 3},       // <![CDATA[ ]]>
    {kNodeLoneEndTag, 2, 1},  // </ >
};

// Empty for a node too short to have an inside.
std::wstring_view Inside(std::wstring_view node, std::int32_t type) {
    for (const NodeMarks& marks : kNodeMarks) {
        if (marks.type != type) continue;
        if (node.size() < marks.before + marks.after) return {};
        return node.substr(marks.before, node.size() - marks.before - marks.after);
    }
    return node;
}

std::wstring_view CurrentNode(const DocumentState& document) {
    return std::wstring_view(document.text)
        .substr(static_cast<std::size_t>(document.nodeOffset),
                static_cast<std::size_t>(document.nodeLength));
}

// The name token number `index` of `text`, empty when there are fewer.
std::wstring_view NameToken(std::wstring_view text, int index = 0) {
    TagScanner scanner(text.data(), text.size(), 0);
    for (int i = 0; i <= index; ++i) {
        if (!scanner.NextName()) return {};
    }
    return {scanner.Token(), static_cast<std::size_t>(scanner.TokenLength())};
}

std::wstring_view NodeName(const DocumentState& document) {
    const std::wstring_view node = CurrentNode(document);
    switch (document.nodeType) {
    case kNodeText:
    case kNodeSpace:
        return L"#text";
    case kNodeCdata:
        return L"#cdata-section";
    case kNodeComment:
        return L"#comment";
    case kNodeInstruction:
    case kNodeLoneEndTag:
        return NameToken(Inside(node, document.nodeType));
    case kNodeDocType:
        return node.size() < 2 ? node.substr(0, 0) : NameToken(node.substr(2), 1); // after "<!"
    default:
        return {};
    }
}

std::wstring NodeData(const DocumentState& document) {
    const std::wstring_view node = CurrentNode(document);
    if (document.nodeType == kNodeText) return DecodeText(node, document.docFlags);
    if (document.nodeType == kNodeLoneEndTag) {
        return std::wstring(NameToken(Inside(node, document.nodeType)));
    }
    return std::wstring(Inside(node, document.nodeType));
}

// The text between the tags of an element that has no children; empty when it has some. Also empty
// where the start tag was too long for its record, as the content's start isn't known then.
std::wstring_view ContentOf(const DocumentState& document, std::int32_t position) {
    const ElementRecord& record = (*document.records)[position];
    const std::size_t tags = record.StartTagLength() + record.EndTagLength();
    if (record.firstChild != 0 || record.length <= tags) return {};
    if (record.Has(kRecordBad) && record.StartTagLength() == kLongestStartTag) return {};
    return std::wstring_view(document.text)
        .substr(record.start + record.StartTagLength(), record.length - tags);
}

std::wstring MixedData(std::wstring_view content, std::uint32_t flags) {
    std::wstring data;
    TagScanner scanner(content.data(), content.size(), flags);
    scanner.reports = false;
    NodeScan scan;
    while (scanner.NextNode(scan) != kNodeEndOfText) {
        const std::wstring_view node = content.substr(static_cast<std::size_t>(scan.start),
                                                      static_cast<std::size_t>(scan.length));
        if (scan.type == kNodeText) data += DecodeText(node, flags);
        if (scan.type == kNodeCdata) data += Inside(node, kNodeCdata);
    }
    return data;
}

} // namespace

bool IsElement(const DocumentState& document, std::int32_t position) {
    return position > 0 && position < document.nextFreePos &&
           static_cast<std::uint32_t>(position) < document.records->Size() &&
           !(*document.records)[position].Has(kRecordFree);
}

bool PositionsAreValid(const DocumentState& document) {
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
        // Blank in a stream: the text of this element was dropped.
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

TagScanner ScannerAfterName(const DocumentState& document, const TagSpan& tag) {
    TagScanner scanner(document.text.data(), tag.end, document.docFlags);
    scanner.cursor = static_cast<std::int32_t>(tag.nameEnd);
    return scanner;
}

std::wstring GetTagName(const DocumentState& document) {
    if (document.nodeLength != 0) return std::wstring(NodeName(document));
    if (!IsElement(document, document.currentPos)) return {};
    return std::wstring(ElementName(document, document.currentPos));
}

std::wstring GetAttribute(const DocumentState& document, std::int32_t position,
                          const wchar_t* name) {
    const std::optional<TagSpan> tag = TagAt(document, position);
    if (!tag || name == nullptr) return {};
    TagScanner scanner = ScannerAfterName(document, *tag);
    if (!scanner.FindAttribute(name, CallerNameLength(name))) return {};
    return DecodeText({scanner.Token(), static_cast<std::size_t>(scanner.TokenLength())},
                      document.docFlags);
}

std::wstring GetAttributeNameAt(const DocumentState& document, std::int32_t index) {
    const std::optional<TagSpan> tag = TagAt(document, document.currentPos);
    if (!tag || index < 0) return {};
    TagScanner scanner = ScannerAfterName(document, *tag);
    if (!scanner.FindAttributeAt(index)) return {};
    return std::wstring(scanner.Token(), static_cast<std::size_t>(scanner.TokenLength()));
}

std::wstring GetData(DocumentState& document, std::int32_t position) {
    if (IsCurrentNode(document, position)) return NodeData(document);
    if (!IsElement(document, position)) return {};
    const std::wstring_view content = ContentOf(document, position);
    if (content.find(L'<') == std::wstring_view::npos) {
        return DecodeText(content, document.docFlags);
    }
    return MixedData(content, document.docFlags);
}

std::optional<std::wstring_view> PlainData(const DocumentState& document, std::int32_t position) {
    if (IsCurrentNode(document, position) || document.Has(kDocTrim | kDocCollapse)) return {};
    if (!IsElement(document, position)) return std::wstring_view();
    const std::wstring_view content = ContentOf(document, position);
    const wchar_t* const end = content.data() + content.size();
    const bool isPlain = FindUnit(content.data(), end, LessOrAmpersand{}) == end;
    return isPlain ? std::optional(content) : std::nullopt;
}

} // namespace ObLibX
