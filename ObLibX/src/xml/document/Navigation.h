// Moves through a document by record index. Nothing here allocates for an element; only a path of
// more than a few steps may throw std::bad_alloc, and the position then stays.
#pragma once

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// Makes the next element from the current position on that matches `path` the current element; a
// null path is any next sibling. False, with the position unchanged, when there is none, while no
// records exist and in stream modes.
bool FindElement(DocumentState& document, const wchar_t* path);

// Makes the next matching element below the current one, after the current child, the current
// child; its parent becomes the current element. Without a current element the next element becomes
// current first, and stays so even when nothing is found below it. False in stream modes.
bool FindChildElement(DocumentState& document, const wchar_t* path);

// Goes down: the current element becomes the parent, and its current child, if any, the current
// element. False without a current element.
bool IntoElement(DocumentState& document);

// Goes up: the parent becomes the current element, and the current element the current child. False
// at the top.
bool OutOfElement(DocumentState& document);

// The next element in document order: the first child, else the next sibling, else the next sibling
// of the nearest ancestor that has one; 0 at the end.
std::int32_t NextInDocumentOrder(const DocumentState& document, std::int32_t position);

} // namespace ObLibX
