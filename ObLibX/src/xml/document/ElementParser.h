// Turns a text into records.
#pragma once

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// Indexes `document.text` from its start, each element linked below the record `parent`. Gives the
// first element's record, 0 when there is none. Appends what is wrong to `document.result` and sets
// the flags of the records concerned. Where a lone end tag, or one that closed more than the
// innermost element, stops the parsing, the elements that are still open keep their children, reach
// up to there and are marked unended; only at the end of the text are their children handed up.
// Linear in the text, without recursion. Throws std::bad_alloc;
// the document can then only be set anew or released.
std::int32_t ParseElements(DocumentState& document, std::int32_t parent);

} // namespace ObLibX
