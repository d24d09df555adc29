// Finding and reading elements in one forward pass over a file.
//
// The text is a window on the file: the text before the present element is dropped when more is
// read, and the offsets in Result() count from the start of the window at that time. The record of
// an element is that of its level, rewritten with each element there; an end tag length of 1 marks
// an element that is still open. Only the element that was found last can be read, until the next
// search; of its ancestors only the names are stored.
//
// Names of tags compare by the case flag as it was when the file was opened. When memory runs out
// during a read, the place in the file is lost: nothing more is found until the file is opened
// anew.
#pragma once

#include <string>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// Finds the next element that matches. The search ends with the parent's end tag when there is no
// path or a relative one, and with the file otherwise. A search that fails leaves no current
// element, and the elements that it passed can't be found any more. A step with a child test
// matches nothing. A step with an attribute test doesn't match an element that was open before the
// search began. name[N] counts the children of an open element from the first one, and on the
// present level from after the present element, if there is one.
//
// Paths as "/..." and "//..." may search past the parent's end. When such a search finds nothing,
// the position is in the innermost ancestor that is still open.
//
// A lone end tag and a node that can't be read end the search too: the position is then on that
// node (kNodeLoneEndTag, kNodeError), Result() has the error, and the next search continues after
// the node.
bool FindElementInStream(DocumentState& document, const wchar_t* path);

// Enters the element that was found, as long as it is open: it is no empty-element tag, and GetData
// hasn't read it to its end.
bool IntoElementInStream(DocumentState& document);

// Goes up to the parent. The next search skips the rest of its content.
bool OutOfElementInStream(DocumentState& document);

// The name of the current element, or of the current node.
std::wstring GetTagNameInStream(const DocumentState& document);

// Reads up to the element's end tag and keeps the whole element in the window meanwhile. Empty when
// a child comes first or the element has no end; the next search then begins at that child or end.
// Nodes that can't be read are skipped, and Result() has their errors.
std::wstring GetDataInStream(DocumentState& document, std::int32_t position);

} // namespace ObLibX
