#include "ObLibX/src/xml/document/Editing.h"

#include <optional>
#include <string_view>

#include "ObLibX/src/xml/document/ElementText.h"
#include "ObLibX/src/xml/document/Shifting.h"
#include "ObLibX/src/xml/names/XmlCharacters.h"
#include "ObLibX/src/xml/scan/AttributeIterator.h"
#include "ObLibX/src/xml/scan/TextCoding.h"

namespace ObLibX {
namespace {

// ---- The text of an added element

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

// ---- Where an added element goes

struct Place {
    std::int32_t parent = 0;
    std::int32_t after = 0; // the sibling that it is linked after; 0: it becomes the first child
    std::size_t offset = 0;
    std::size_t removed = 0;   // units at `offset` that it replaces
    bool opensParent = false;  // the parent is one tag and gets an end tag
    bool emptyContent = false; // the parent has tags with nothing between them
};

bool HasTooLongTag(const DocumentState& document, std::int32_t position) {
    return position != 0 && RecordAt(document, position).Has(kRecordBad);
}

void PlaceAtNode(const DocumentState& document, std::uint32_t flags, Place& place) {
    const auto length = static_cast<std::size_t>(document.nodeLength);
    const bool replaces = (flags & kAddAtStart) != 0;
    place.offset = static_cast<std::size_t>(document.nodeOffset);
    place.after = LastChildBefore(document, place.parent, place.offset);
    if (replaces) {
        place.removed = length;
    } else if ((flags & kAddBefore) == 0) {
        place.offset += length;
    }
}

void PlaceAtElement(const DocumentState& document, std::int32_t element, std::uint32_t flags,
                    Place& place) {
    const ElementRecord& record = RecordAt(document, element);
    const bool before = (flags & kAddBefore) != 0;
    place.offset = record.start + (before ? 0 : record.length);
    place.after = before ? PreviousSibling(document, element) : element;
}

// Units of the "/>" of an empty-element tag, with all slashes before it: a slash that stayed before
// the '>' would make the tag an empty element again.
std::size_t EmptyTagMarks(const DocumentState& document, const ElementRecord& record) {
    std::size_t marks = 2;
    while (document.text[record.start + record.length - marks - 1] == L'/') ++marks;
    return marks;
}

void PlaceInParent(const DocumentState& document, std::uint32_t flags, Place& place) {
    const ElementRecord& parent = RecordAt(document, place.parent);
    const std::uint32_t tags = parent.StartTagLength() + parent.EndTagLength();
    place.opensParent = place.parent != 0 && parent.StartTagLength() == parent.length;
    place.emptyContent = place.parent != 0 && tags == parent.length && !place.opensParent;
    if (place.opensParent) {
        const std::size_t marks = parent.Has(kRecordUnended) ? 0 : EmptyTagMarks(document, parent);
        place.offset = parent.start + parent.length - marks;
        place.removed = marks;
    } else if ((flags & (kAddAtStart | kAddBefore)) != 0) {
        place.offset = parent.start + parent.StartTagLength();
    } else {
        place.offset = parent.start + parent.length - parent.EndTagLength();
        place.after = LastChild(document, place.parent);
    }
}

// Past the white space at `offset` when a tag or the end of the text follows it.
std::size_t AfterSpace(const std::wstring& text, std::size_t offset) {
    std::size_t at = offset;
    while (at < text.size() && IsXmlSpace(text[at])) ++at;
    return at == text.size() || text[at] == L'<' ? at : offset;
}

// False when nothing can be added there.
bool FindPlace(const DocumentState& document, std::uint32_t flags, Place& place) {
    const bool asChild = (flags & kAddAsChild) != 0;
    const bool onNode = document.nodeLength != 0;
    if (asChild && (onNode || document.currentPos == 0)) return false;
    place.parent = asChild ? document.currentPos : document.parentPos;
    const std::int32_t element = asChild ? document.childPos : document.currentPos;
    if (HasTooLongTag(document, place.parent)) return false;
    if (onNode) {
        PlaceAtNode(document, flags, place);
    } else if (element != 0 && (flags & kAddAtStart) == 0) {
        if (static_cast<std::int32_t>(RecordAt(document, element).parent) != place.parent ||
            HasTooLongTag(document, element)) {
            return false;
        }
        PlaceAtElement(document, element, flags, place);
    } else {
        PlaceInParent(document, flags, place);
    }
    if ((flags & (kAddNoLineEnds | kAddAtStart)) == 0 && !place.opensParent) {
        place.offset = AfterSpace(document.text, place.offset);
    }
    return true;
}

// ---- The splice of an added element, and the numbers

// What takes the place of `removed` units at the place's offset.
struct Insertion {
    std::wstring text;
    std::size_t elementAt = 0; // the new element in it
    std::uint32_t parentEndTag = 0;
};

// False when the end tag of a parent that is opened would be too long.
bool WriteInsertion(const DocumentState& document, const Place& place, const NewElement& element,
                    std::uint32_t flags, Insertion& insertion) {
    const bool lineEnds = (flags & kAddNoLineEnds) == 0;
    if (place.removed != 0 && place.opensParent) insertion.text += L'>';
    if (lineEnds && (place.opensParent || place.emptyContent)) insertion.text += kLineEnd;
    insertion.elementAt = insertion.text.size();
    insertion.text += element.text;
    if (lineEnds) insertion.text += kLineEnd;
    if (!place.opensParent) return true;
    const TagSpan tag = *TagAt(document, place.parent);
    const std::size_t nameLength = tag.nameEnd - tag.nameStart;
    if (nameLength + kEndTagMarks > kLongestEndTag) return false;
    insertion.parentEndTag = static_cast<std::uint32_t>(nameLength + kEndTagMarks);
    insertion.text.append(L"</").append(document.text, tag.nameStart, nameLength).append(L">");
    return true;
}

void LinkAsFirst(DocumentState& document, std::int32_t parent, std::int32_t position) {
    ElementRecord& record = RecordAt(document, position);
    const auto index = static_cast<std::uint32_t>(position);
    record.next = RecordAt(document, parent).firstChild;
    record.prev = index;
    record.flagsAndLevel |= kRecordFirstSibling;
    if (record.next != 0) {
        ElementRecord& old = (*document.records)[record.next];
        record.prev = old.prev;
        old.prev = index;
        old.flagsAndLevel &= ~kRecordFirstSibling;
    }
    RecordAt(document, parent).firstChild = index;
}

void LinkAfter(DocumentState& document, std::int32_t parent, std::int32_t after,
               std::int32_t position) {
    ElementRecord& record = RecordAt(document, position);
    const auto index = static_cast<std::uint32_t>(position);
    record.next = RecordAt(document, after).next;
    record.prev = static_cast<std::uint32_t>(after);
    RecordAt(document, after).next = index;
    // Without a next sibling the new element is the last child, which the first child's `prev` is.
    const std::uint32_t pointsBack =
        record.next != 0 ? record.next : RecordAt(document, parent).firstChild;
    (*document.records)[pointsBack].prev = index;
}

void Link(DocumentState& document, const Place& place, std::int32_t position) {
    ElementRecord& record = RecordAt(document, position);
    record.parent = static_cast<std::uint32_t>(place.parent);
    record.SetLevel(RecordAt(document, place.parent).Level() + 1);
    if (place.after == 0) {
        LinkAsFirst(document, place.parent, position);
    } else {
        LinkAfter(document, place.parent, place.after, position);
    }
}

// Sets the parent's own numbers when its one tag has become two.
void OpenParent(DocumentState& document, const Place& place, const Insertion& insertion,
                std::int32_t delta) {
    ElementRecord& parent = RecordAt(document, place.parent);
    const auto slashes = static_cast<std::uint32_t>(place.removed != 0 ? place.removed - 1 : 0);
    parent.SetTagLengths(parent.StartTagLength() - slashes, insertion.parentEndTag);
    parent.flagsAndLevel &= ~kRecordUnended;
    parent.length += static_cast<std::uint32_t>(delta);
}

std::int32_t InsertElement(DocumentState& document, const Place& place, const NewElement& element,
                           const Insertion& insertion) {
    MakeRoom(document.text, document.text.size() - place.removed + insertion.text.size());
    const std::int32_t position = TakeRecord(document); // nothing after this throws
    const auto delta =
        static_cast<std::int32_t>(insertion.text.size()) - static_cast<std::int32_t>(place.removed);
    Splice(document, place.offset, place.removed, insertion.text.data(), insertion.text.size());
    element.FillRecord(RecordAt(document, position), place.offset + insertion.elementAt);
    Link(document, place, position);
    if (place.opensParent) {
        OpenParent(document, place, insertion, delta);
        Adjust(document, place.parent, delta, true);
    } else {
        Adjust(document, position, delta, true);
    }
    return position;
}

// ---- An attribute that is set

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

bool AddElement(DocumentState& document, const wchar_t* name, const wchar_t* value,
                std::uint32_t flags) {
    if (document.Has(kDocStreams) || !PositionsAreValid(document)) return false;
    Place place;
    NewElement element;
    Insertion insertion;
    if (!FindPlace(document, flags, place) || !WriteElement(name, value, flags, element) ||
        !WriteInsertion(document, place, element, flags, insertion) ||
        !TextStaysInBounds(document, place.removed, insertion.text.size())) {
        return false;
    }
    const std::int32_t added = InsertElement(document, place, element, insertion);
    if ((flags & kAddAsChild) != 0) {
        SetPosition(document, document.parentPos, document.currentPos, added);
    } else {
        SetPosition(document, document.parentPos, added, 0);
    }
    return true;
}

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
