// Turns a text into records.
#pragma once

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// The state before anything is indexed, which is also what a failed allocation leaves: no position,
// no saved position, no record in use. The text stays.
void ForgetElements(DocumentState& document) noexcept;

// Indexes `document.text` from its start: one record for each element, linked below record 0. What
// is wrong is appended to `document.result` and marked in the records concerned.
//
// The parsing stops at a lone end tag, and at an end tag that closes more than the innermost
// element. The elements that are open there keep their children, reach up to there and are marked
// unended. At the end of the text the children of open elements are handed up instead.
//
// Linear in the text, without recursion. Throws std::bad_alloc and leaves the elements forgotten.
void IndexElements(DocumentState& document);

// Whether the text that was indexed is well formed, with exactly one root element. In a stream only
// what came by counts: in reading nothing was bad, and in writing always true.
bool IsWellFormed(const DocumentState& document);

} // namespace ObLibX
