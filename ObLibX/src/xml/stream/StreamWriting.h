// The forward form of adding elements, for a file that is written from its start to its end.
//
// The text is what hasn't gone to the file yet. It ends with the current element, which can still
// get attributes and children; everything before it goes as soon as the text would pass the
// channel's block size. The same calls on a document in memory give the same text.
//
// Positions are those that these calls leave. Where a client sets others, the calls answer false
// until it sets the right ones again. After a file error, which Result() tells, and when memory ran
// out in a write, nothing more is written: the file may end in the middle of something.
#pragma once

#include <cstdint>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// As AddElement, at the end of what is written: kAddAtStart and kAddBefore mean nothing here, as
// there is no way back. False with kAddAsChild, after a failed write, and when what isn't in the
// file yet would pass the longest text.
bool AddElementToStream(DocumentState& document, const wchar_t* name, const wchar_t* value,
                        std::uint32_t flags);

// As SetAttribute, for the current element as long as it has no children. False after that.
bool SetAttributeInStream(DocumentState& document, std::int32_t position, const wchar_t* name,
                          const wchar_t* value, std::uint32_t flags);

// Into the current element, which is written as a single tag so far and gets its end tag when
// something is added below it.
bool IntoElementInWriting(DocumentState& document);

// Writes the parent's end tag, if the parent was given children; it is then the current element and
// complete.
bool OutOfElementInWriting(DocumentState& document);

// Ends every element that is open and writes the rest of the text. False after a failed write.
bool FinishStream(DocumentState& document);

} // namespace ObLibX
