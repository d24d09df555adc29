// Adding elements to a file that is written in one forward pass.
//
// The text is what isn't in the file yet. It ends with the current element, which can still get
// attributes and children. The text before that element is written as soon as the whole text is
// longer than the channel's block size. The same calls on a document in memory give the same text.
//
// Positions are those that these calls leave. When a client sets others, the calls return false
// until it sets the right ones again. After a file error, which Result() reports, and after memory
// ran out in a write, nothing more is written: the file may end anywhere in the text.
#pragma once

#include <cstdint>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// As AddElement, at the end of the text: kAddAtStart and kAddBefore are ignored, as text before the
// end can't be changed. False with kAddAsChild, after a failed write, and when the text that isn't
// in the file yet would be longer than kLongestText.
bool AddElementToStream(DocumentState& document, const wchar_t* name, const wchar_t* value,
                        std::uint32_t flags);

// As SetAttribute, for the current element as long as it has no children. False after that.
bool SetAttributeInStream(DocumentState& document, std::int32_t position, const wchar_t* name,
                          const wchar_t* value, std::uint32_t flags);

// Enters the current element. It is one tag so far, and gets its end tag when an element is added
// to it.
bool IntoElementInWriting(DocumentState& document);

// Goes up to the parent, which becomes the current element and is complete. Writes its end tag, if
// it was given children.
bool OutOfElementInWriting(DocumentState& document);

// Ends every element that is open and writes the rest of the text. False after a failed write.
bool FinishStream(DocumentState& document);

} // namespace ObLibX
