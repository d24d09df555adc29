// Changes: text spliced in place, and the numbers behind it moved.
#pragma once

#include <cstdint>

#include "ObLibX/src/xml/DocumentState.h"

namespace ObLibX {

bool AddElement(DocumentState& document, const wchar_t* name, const wchar_t* value,
                std::uint32_t flags);
bool SetAttribute(DocumentState& document, std::int32_t position, const wchar_t* name,
                  const wchar_t* value, std::uint32_t flags);

// Replaces `removed` units at `offset` by `text`. A splice that passes the capacity reserves the
// new length and half of it and 128 units more. Throws std::bad_alloc and changes nothing.
void Splice(DocumentState& document, std::size_t offset, std::size_t removed, const wchar_t* text,
            std::size_t length);

// Walks from `position` in document order: an element behind the change moves its start by `delta`,
// one that contains it grows its length by `delta`. With `startAfterChildren` the walk begins
// behind the children of `position`.
void Adjust(DocumentState& document, std::int32_t position, std::int32_t delta,
            bool startAfterChildren);

} // namespace ObLibX
