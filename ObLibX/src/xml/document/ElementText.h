// The text to which a record points: tags, names, attributes and data. All of it is read in place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ObLibX/src/xml/document/DocumentState.h"
#include "ObLibX/src/xml/scan/TagScanner.h"

namespace ObLibX {

// A tag whose attributes can be read: an element's start tag or a processing instruction.
struct TagSpan {
    std::size_t start;     // of its '<'
    std::size_t nameStart; // of its name, after white space
    std::size_t nameEnd;
    std::size_t end; // where the attributes end; before the "?>" of an instruction
};

// Whether the record is that of an element: not record 0, and neither freed nor never used.
bool IsElement(const DocumentState& document, std::int32_t position);

// Whether the three positions are elements or 0. A client can set them to anything.
bool PositionsAreValid(const DocumentState& document);

// Whether `position` means the current node. On a node the current position does.
bool IsCurrentNode(const DocumentState& document, std::int32_t position);

// The name after the '<', not decoded. `position` is an element's.
std::wstring_view ElementName(const DocumentState& document, std::int32_t position);

// A tag as in TagSpan, without looking for its name.
struct TagBounds {
    std::size_t start;
    std::size_t nameFrom; // after the "<" or "<?"
    std::size_t end;
    bool instruction;
};

// The start tag of the element, or the current processing instruction; none for anything else.
std::optional<TagBounds> TagBoundsAt(const DocumentState& document, std::int32_t position);
std::optional<TagSpan> TagAt(const DocumentState& document, std::int32_t position);

// A scanner with its cursor after the tag's name and its end at the end of the tag.
TagScanner ScannerAfterName(const DocumentState& document, const TagSpan& tag);

// ---- Names, attributes and data as clients get them
//
// Attributes aren't indexed: each call scans the tag anew, in place, and allocates only what it
// returns. Throws std::bad_alloc and changes nothing. `position` is an element's record; on a node
// the current position means the node.

// The name of the current element or node: "#text", "#cdata-section" and "#comment" for those, the
// target of a processing instruction, the name of a lone end tag, the name after a document type's
// keyword. Empty when nothing is current.
std::wstring GetTagName(const DocumentState& document);

// The decoded value of an attribute of an element or of the current processing instruction; the
// attribute's own name when it has no '='. Empty when there is no such attribute or element. `name`
// ends as EndsCallerName has it.
std::wstring GetAttribute(const DocumentState& document, std::int32_t position,
                          const wchar_t* name);

// The name of attribute number `index`, from 0, of the current element or processing instruction,
// not decoded; empty past the last attribute.
std::wstring GetAttributeNameAt(const DocumentState& document, std::int32_t index);

// The text of an element that has no children: decoded text and raw CDATA, without the other nodes.
// For the current node the text inside its marks; a text node is decoded. Empty otherwise.
std::wstring GetData(DocumentState& document, std::int32_t position);

// What GetData returns for an element, in place; none where the text has to be decoded for it.
std::optional<std::wstring_view> PlainData(const DocumentState& document, std::int32_t position);

} // namespace ObLibX
