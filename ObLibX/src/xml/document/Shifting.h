// What every change does to the text and to the numbers after it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// The last child of `parent`, the sibling before an element, and the last child of `parent` that
// begins before `offset`; 0 when there is none. LastChildBefore searches from the end.
std::int32_t LastChild(const DocumentState& document, std::int32_t parent);
std::int32_t PreviousSibling(const DocumentState& document, std::int32_t position);
std::int32_t LastChildBefore(const DocumentState& document, std::int32_t parent,
                             std::size_t offset);

// Whether the text stays within 2^31 - 1 units: offsets and lengths are 32 bits with a sign.
bool TextStaysInBounds(const DocumentState& document, std::size_t removed, std::size_t added);

// Reserves memory, so that a splice up to `length` units doesn't allocate. Throws std::bad_alloc
// and changes nothing.
void MakeRoom(std::wstring& text, std::size_t length);

// Replaces `removed` units at `offset` by `text`, which isn't part of the document's. A splice that
// passes the capacity reserves the new length, half of it and 128 units more. Throws
// std::bad_alloc and changes nothing.
void Splice(DocumentState& document, std::size_t offset, std::size_t removed, const wchar_t* text,
            std::size_t length);

// Goes through the elements after `position` in document order: the start of each element after the
// change moves by `delta`, and the length of each element that contains the change grows by
// `delta`, record 0 included. `position` itself stays unchanged; with `startAfterChildren` its
// children do too. Linear in the number of elements after the change, without recursion.
void Adjust(DocumentState& document, std::int32_t position, std::int32_t delta,
            bool startAfterChildren);

// Moves the elements after a change at `offset` in the content of `parent`, and grows the elements
// that contain the change, `parent` included.
void AdjustAfter(DocumentState& document, std::int32_t parent, std::size_t offset,
                 std::int32_t delta);

} // namespace ObLibX
