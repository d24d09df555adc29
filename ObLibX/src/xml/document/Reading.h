// Names, attributes and data, read out of the text where the index points. Attributes aren't
// indexed: each reading scans the tag anew, in place; only what is handed out is allocated. Throws
// std::bad_alloc and changes nothing.
//
// `position` is an element's record. On a current node the current position stands for the node.
#pragma once

#include <string>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// The name of the current element or node: "#text", "#cdata-section" and "#comment" for those, the
// target of a processing instruction, the name of a lone end tag or behind a document type's
// keyword. Empty when nothing is current.
std::wstring GetTagName(const DocumentState& document);

// The decoded value of an attribute of an element or of the current processing instruction; its own
// name when it has no '='. Empty when there is no such attribute or element. The name ends as
// EndsCallerName says.
std::wstring GetAttribute(const DocumentState& document, std::int32_t position,
                          const wchar_t* name);

// The name of attribute number `index`, from 0, as it stands; empty past the last. Of the current
// element or processing instruction.
std::wstring GetAttributeNameAt(const DocumentState& document, std::int32_t index);

// The text of an element that has no children: decoded text and raw CDATA, the rest passed over.
// Of a node what is inside its marks, text decoded. Empty for everything else.
std::wstring GetData(DocumentState& document, std::int32_t position);

} // namespace ObLibX
