#include "ObLibX/src/xml/document/Shifting.h"

namespace ObLibX {
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

std::int32_t LastChildBefore(const DocumentState& document, std::int32_t parent,
                             std::size_t offset) {
    std::int32_t child = LastChild(document, parent);
    while (child != 0 && RecordAt(document, child).start >= offset) {
        child = PreviousSibling(document, child);
    }
    return child;
}

bool TextStaysInBounds(const DocumentState& document, std::size_t removed, std::size_t added) {
    return document.text.size() - removed + added <= kLongestText;
}

void MakeRoom(std::wstring& text, std::size_t length) {
    if (length <= text.capacity()) return;
    std::wstring larger;
    larger.reserve(length + length / 2 + 128);
    larger = text; // within the capacity
    text.swap(larger);
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
    std::uint32_t below = next != 0 ? 1 : 0; // levels below an element that contains the change
    for (;;) {
        while (next == 0 && records[at].StartTagLength() != 0) {
            next = records[at].next;
            if (next != 0) break;
            at = records[at].parent;
            if (below != 0) {
                --below; // an element after the change; it and all its children have moved
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

void AdjustAfter(DocumentState& document, std::int32_t parent, std::size_t offset,
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

} // namespace ObLibX
