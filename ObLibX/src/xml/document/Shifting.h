// What every change does to the text and to the numbers after it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

inline ElementRecord& RecordAt(DocumentState& document, std::int32_t position) {
    return (*document.records)[static_cast<std::uint32_t>(position)];
}
inline const ElementRecord& RecordAt(const DocumentState& document, std::int32_t position) {
    return (*document.records)[static_cast<std::uint32_t>(position)];
}

// The last child of `parent`, the sibling before an element, and the last child of `parent` that
// begins before `offset`; 0 when there is none. The last one walks from the end.
std::int32_t LastChild(const DocumentState& document, std::int32_t parent);
std::int32_t PreviousSibling(const DocumentState& document, std::int32_t position);
std::int32_t LastChildBefore(const DocumentState& document, std::int32_t parent,
                             std::size_t offset);

// Whether the text stays within 2^31 - 1 units: offsets and lengths are 32 bits with a sign.
bool TextStaysInBounds(const DocumentState& document, std::size_t removed, std::size_t added);

// Leaves the text as it is; what follows may splice it up to `length` units without allocating.
// Throws std::bad_alloc and changes nothing.
void MakeRoom(std::wstring& text, std::size_t length);

// Replaces `removed` units at `offset` by `text`, which isn't part of the document's. A splice that
// passes the capacity reserves the new length and half of it and 128 units more. Throws
// std::bad_alloc and changes nothing.
void Splice(DocumentState& document, std::size_t offset, std::size_t removed, const wchar_t* text,
            std::size_t length);

// Walks from `position` in document order: an element behind the change moves its start by `delta`,
// one that contains it grows its length by `delta`; `position` itself stays as it is. With
// `startAfterChildren` the walk begins behind the children of `position`. Linear in what lies
// behind, without recursion; ends at record 0, whose length grows too.
void Adjust(DocumentState& document, std::int32_t position, std::int32_t delta,
            bool startAfterChildren);

// Shifts what lies behind a change at `offset` in the content of `parent`, and grows what contains
// it, `parent` too.
void AdjustAfter(DocumentState& document, std::int32_t parent, std::size_t offset,
                 std::int32_t delta);

} // namespace ObLibX
