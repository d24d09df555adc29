// Where a block of bytes may end without a character being cut in two.
#pragma once

#include <cstdint>

#include "ObLibX/src/xml/encoding/TextConverter.h"

namespace ObLibX {

// How many bytes at the end of the converter's source must be given back so that no character of
// its fromEncoding is cut in two. True when a boundary was found; false, with 0, when there is
// none. In UTF-16 half a surrogate pair is given back even when the source is nothing else. Throws
// std::bad_alloc.
bool FindCharBoundary(const TextConverter& converter, std::int32_t& outBytesToGiveBack);

} // namespace ObLibX
