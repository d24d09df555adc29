// The records of a stream: one a level, rewritten as elements come by. Of all of them the last one
// (nextFreePos - 1) alone points into the text in reading, and the current element's in writing;
// the others are blank, so that the text may move.
#pragma once

#include <cstdint>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// As the end tag length of a record: the element is still open. A real end tag has three units.
inline constexpr std::uint32_t kStillOpen = 1;

// A cleared record for the element at `level`, 1 for a root element; its index is the level, and it
// is the last one. Throws std::bad_alloc and changes nothing.
ElementRecord& MakeStreamRecord(DocumentState& document, std::uint32_t level);

// Nothing of the element's text can be read any more; whether it is open stays.
void BlankStreamRecord(DocumentState& document, std::uint32_t level);

} // namespace ObLibX
