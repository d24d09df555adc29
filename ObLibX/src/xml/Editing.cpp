#include "ObLibX/src/xml/Editing.h"

#include <string_view>

#include "ObLibX/src/xml/ElementText.h"
#include "ObLibX/src/xml/NewElement.h"
#include "ObLibX/src/xml/TextCoding.h"
#include "ObLibX/src/xml/XmlCharacters.h"
#include "ObLibX/src/xml/XmlOffsetDocument.h"

namespace ObLibX {
namespace {

constexpr std::size_t kLongestText = 0x7FFFFFFF; // offsets and lengths are 32 bits with a sign

ElementRecord& RecordAt(DocumentState& document, std::int32_t position) {
    return (*document.records)[static_cast<std::uint32_t>(position)];
}
const ElementRecord& RecordAt(const DocumentState& document, std::int32_t position) {
    return (*document.records)[static_cast<std::uint32_t>(position)];
}

// ---- Where it goes

struct Place {
    std::int32_t parent = 0;
    std::int32_t after = 0; // the sibling that it is linked behind; 0: it becomes the first child
    std::size_t offset = 0;
    std::size_t removed = 0;   // units at `offset` that it replaces
    bool opensParent = false;  // the parent is a single tag
    bool emptyContent = false; // the parent has tags with nothing between them
};

bool HasTooLongTag(const DocumentState& document, std::int32_t position) {
    return position != 0 && RecordAt(document, position).Has(kRecordBad);
}

std::int32_t LastChild(const DocumentState& document, std::int32_t parent) {
    const std::uint32_t first = RecordAt(document, parent).firstChild;
    return first == 0 ? 0 : static_cast<std::int32_t>((*document.records)[first].prev);
}

std::int32_t PreviousSibling(const DocumentState& document, std::int32_t position) {
    const ElementRecord& record = RecordAt(document, position);
    const bool first = RecordAt(document, static_cast<std::int32_t>(record.parent)).firstChild ==
                       static_cast<std::uint32_t>(position);
    return first ? 0 : static_cast<std::int32_t>(record.prev);
}

// The last child that begins before `offset`, 0 when none does.
std::int32_t LastChildBefore(const DocumentState& document, std::int32_t parent,
                             std::size_t offset) {
    std::int32_t child = LastChild(document, parent);
    while (child != 0 && RecordAt(document, child).start >= offset) {
        child = PreviousSibling(document, child);
    }
    return child;
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

void PlaceInParent(const DocumentState& document, std::uint32_t flags, Place& place) {
    const ElementRecord& parent = RecordAt(document, place.parent);
    const std::uint32_t tags = parent.StartTagLength() + parent.EndTagLength();
    place.opensParent = place.parent != 0 && parent.StartTagLength() == parent.length;
    place.emptyContent = place.parent != 0 && tags == parent.length && !place.opensParent;
    if (place.opensParent) {
        const std::size_t marks = parent.Has(kRecordUnended) ? 0 : 2; // "/>"
        place.offset = parent.start + parent.length - marks;
        place.removed = marks;
    } else if ((flags & (kAddAtStart | kAddBefore)) != 0) {
        place.offset = parent.start + parent.StartTagLength();
    } else {
        place.offset = parent.start + parent.length - parent.EndTagLength();
        place.after = LastChild(document, place.parent);
    }
}

// Behind the white space at `offset` when a tag or the end of the text follows it.
std::size_t BehindSpace(const std::wstring& text, std::size_t offset) {
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
        place.offset = BehindSpace(document.text, place.offset);
    }
    return true;
}

// ---- The splice and the numbers

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

// Changes the text's length by nothing; what follows may splice up to `length` without allocating.
void MakeRoom(std::wstring& text, std::size_t length) {
    if (length <= text.capacity()) return;
    std::wstring larger;
    larger.reserve(length + length / 2 + 128);
    larger = text; // within the capacity
    text.swap(larger);
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

// The first child's `prev` stays on the last child.
void LinkBehind(DocumentState& document, std::int32_t parent, std::int32_t after,
                std::int32_t position) {
    ElementRecord& record = RecordAt(document, position);
    const auto index = static_cast<std::uint32_t>(position);
    record.next = RecordAt(document, after).next;
    record.prev = static_cast<std::uint32_t>(after);
    RecordAt(document, after).next = index;
    const std::uint32_t behind =
        record.next != 0 ? record.next : RecordAt(document, parent).firstChild;
    (*document.records)[behind].prev = index;
}

void Link(DocumentState& document, const Place& place, std::int32_t position) {
    ElementRecord& record = RecordAt(document, position);
    record.parent = static_cast<std::uint32_t>(place.parent);
    record.SetLevel(RecordAt(document, place.parent).Level() + 1);
    if (place.after == 0) {
        LinkAsFirst(document, place.parent, position);
    } else {
        LinkBehind(document, place.parent, place.after, position);
    }
}

// The parent's own numbers, once its single tag is two.
void OpenParent(DocumentState& document, const Place& place, const Insertion& insertion,
                std::int32_t delta) {
    ElementRecord& parent = RecordAt(document, place.parent);
    const std::uint32_t slash = parent.Has(kRecordUnended) ? 0 : 1;
    parent.SetTagLengths(parent.StartTagLength() - slash, insertion.parentEndTag);
    parent.flagsAndLevel &= ~kRecordUnended;
    parent.length += static_cast<std::uint32_t>(delta);
}

// Shifts what lies behind a change at `offset` in the parent's content, and grows what contains it.
void AdjustBehind(DocumentState& document, std::int32_t parent, std::size_t offset,
                  std::int32_t delta) {
    const std::int32_t before = LastChildBefore(document, parent, offset);
    if (before != 0) return Adjust(document, before, delta, true);
    const auto first = static_cast<std::int32_t>(RecordAt(document, parent).firstChild);
    ElementRecord& moved = RecordAt(document, first != 0 ? first : parent);
    if (first != 0) {
        moved.start += static_cast<std::uint32_t>(delta);
        Adjust(document, first, delta, false);
    } else {
        moved.length += static_cast<std::uint32_t>(delta);
        Adjust(document, parent, delta, true);
    }
}

std::int32_t InsertElement(DocumentState& document, const Place& place, const NewElement& element,
                           const Insertion& insertion) {
    MakeRoom(document.text, document.text.size() - place.removed + insertion.text.size());
    const std::int32_t position = TakeRecord(document); // the last that may throw
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

bool TextStaysInBounds(const DocumentState& document, std::size_t removed, std::size_t added) {
    return document.text.size() - removed + added <= kLongestText;
}

// ---- Attributes

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

// Behind the last token of the tag. When that is a '=' which waits for its value, behind the tag's
// name instead, as the new attribute would be taken for the value.
std::size_t BehindLastToken(const DocumentState& document, std::int32_t position,
                            const TagSpan& tag) {
    std::size_t end = tag.end;
    if (!IsCurrentNode(document, position)) {
        const ElementRecord& record = RecordAt(document, position);
        const bool slash = record.length == record.StartTagLength() && !record.Has(kRecordUnended);
        end -= slash ? 2 : 1;
    }
    while (end > tag.nameEnd && IsXmlSpace(document.text[end - 1])) --end;
    return end > tag.nameEnd && document.text[end - 1] == L'=' ? tag.nameEnd : end;
}

AttributeChange WriteAttribute(const DocumentState& document, std::int32_t position,
                               const TagSpan& tag, std::wstring_view name,
                               std::wstring_view encoded) {
    AttributeChange change;
    TagScanner scanner = ScannerBehindName(document, tag);
    if (scanner.FindAttribute(name.data(), name.size())) {
        ReplaceValue(scanner, tag, change);
    } else {
        change.offset = BehindLastToken(document, position, tag);
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

bool IsWritableName(const wchar_t* name) {
    std::size_t length = 0;
    while (!EndsName(name[length]) && !EndsCallerName(name[length])) ++length;
    return length != 0 && name[length] == L'\0';
}

bool AddElement(DocumentState& document, const wchar_t* name, const wchar_t* value,
                std::uint32_t flags) {
    if (document.Has(kDocStreams) || !PositionsHold(document)) return false;
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
    const bool given = name != nullptr && value != nullptr && IsWritableName(name);
    if (!given || !PositionsHold(document)) return false;
    const std::optional<TagSpan> tag = TagAt(document, position);
    if (!tag) return false;
    const std::wstring encoded =
        EncodeText(value, (flags & kEncodeKeepReferences) | kEncodeAttribute);
    const AttributeChange change = WriteAttribute(document, position, *tag, name, encoded);
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

void Splice(DocumentState& document, std::size_t offset, std::size_t removed, const wchar_t* text,
            std::size_t length) {
    MakeRoom(document.text, document.text.size() - removed + length);
    document.text.replace(offset, removed, text, length);
    document.docFlags |= kDocModified;
}

void Adjust(DocumentState& document, std::int32_t position, std::int32_t delta,
            bool startAfterChildren) {
    ElementRecordTable& records = *document.records;
    const auto change = static_cast<std::uint32_t>(delta);
    auto at = static_cast<std::uint32_t>(position);
    std::uint32_t next = startAfterChildren ? 0 : records[at].firstChild;
    std::uint32_t below = next != 0 ? 1 : 0; // levels down from what contains the change
    for (;;) {
        while (next == 0 && records[at].StartTagLength() != 0) {
            next = records[at].next;
            if (next != 0) break;
            at = records[at].parent;
            if (below != 0) {
                --below; // an element behind the change, which moved with all that it holds
            } else {
                records[at].length += change;
            }
        }
        if (next == 0) return;
        records[next].start += change;
        at = next;
        next = records[at].firstChild;
        if (next != 0) ++below;
    }
}

} // namespace ObLibX
