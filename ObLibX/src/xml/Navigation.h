// Moving through a document by record index.
#pragma once

#include "ObLibX/src/xml/DocumentState.h"

namespace ObLibX {

bool FindElement(DocumentState& document, const wchar_t* path);
bool FindChildElement(DocumentState& document, const wchar_t* path);
bool IntoElement(DocumentState& document);
bool OutOfElement(DocumentState& document);

// The next element in document order: the first child, else the next sibling, else that of the
// nearest ancestor which has one; 0 at the end. Used by searches and by the shift after a change.
std::int32_t NextInDocumentOrder(const DocumentState& document, std::int32_t position);

} // namespace ObLibX
