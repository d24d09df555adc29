// Moving through a document by record index. Nothing here allocates for an element; a path of more
// than a few steps is the one thing that may throw std::bad_alloc, and then nothing has moved.
#pragma once

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// The next element that matches `path` from the current position on; null for any next sibling. It
// becomes the current element. False, with nothing moved, when there is none, while no records
// exist and in stream writing.
bool FindElement(DocumentState& document, const wchar_t* path);

// The next element that matches below the current one, behind the current child; its parent
// becomes the current element. Without a current element the next one becomes it first, and stays
// it even when nothing is found below. False in stream modes.
bool FindChildElement(DocumentState& document, const wchar_t* path);

// Goes down: the current element becomes the parent, and its current child, if any, the current
// element. False without a current element.
bool IntoElement(DocumentState& document);

// Goes up: what was current becomes the current child. False at the top.
bool OutOfElement(DocumentState& document);

// The next element in document order: the first child, else the next sibling, else that of the
// nearest ancestor which has one; 0 at the end. Used by searches.
std::int32_t NextInDocumentOrder(const DocumentState& document, std::int32_t position);

} // namespace ObLibX
