// The records of a stream: one a level, rewritten as elements come by.
#pragma once

#include <cstdint>

#include "ObLibX/src/xml/DocumentState.h"

namespace ObLibX {

// As the end tag length of a record: the element is still open. A real end tag has three units.
inline constexpr std::uint32_t kStillOpen = 1;

// A cleared record for the element at `level`, 1 for a root element; its index is the level. Throws
// std::bad_alloc.
ElementRecord& MakeStreamRecord(DocumentState& document, std::uint32_t level);

// Nothing of the element's text can be read any more; whether it is open stays.
void BlankStreamRecord(DocumentState& document, std::uint32_t level);

} // namespace ObLibX
