// Elements added: text spliced in place, and the numbers after it moved.
//
// The records after a change are those of a fresh parse, in another order of their indices, as long
// as every element has its end. An element added with kAddNoEndTag has not: <r></r> becomes
// <r><c></r>, where c is marked unended and everything else keeps its record. A fresh parse of that
// text would report c, mark the document and r as badly formed, and stop after </r>.
#pragma once

#include <cstdint>

#include "ObLibX/src/xml/document/DocumentState.h"
#include "ObLibX/src/xml/document/NewElement.h"

namespace ObLibX {

// Adds <name>value</name>, or without a value (null or empty) <name/>, where `flags` (kAdd...) and
// the position say; it becomes the current element, or with kAddAsChild the current child. By
// default it goes behind the current element, and at the end of the parent's content when there is
// none.
//
// False with nothing changed: in a stream mode; with kAddAsChild without a current element; for a
// value with kAddNoEndTag; for a name that a tag couldn't hold or that a path couldn't name (see
// IsWritableName); when a tag would pass its length field (a name of more than 1,020 units with a
// value, or in a parent that has to be opened; of some 4,194,300 without), or the text
// 2^31 - 1 units; in or behind an element whose own tag is too long for the index. Throws
// std::bad_alloc and changes nothing.
bool AddElement(DocumentState& document, const wchar_t* name, const wchar_t* value,
                std::uint32_t flags);

} // namespace ObLibX
