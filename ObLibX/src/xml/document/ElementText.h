// Where a record points at in the text: tags, names, attributes. Everything is read in place.
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
    std::size_t nameStart; // of its name, white space before it passed over
    std::size_t nameEnd;
    std::size_t end; // up to which attributes are looked for; before the "?>" of an instruction
};

// The record of an element; not the root pseudo-element, nor a freed or never used record.
bool IsElement(const DocumentState& document, std::int32_t position);

// Whether the three positions are elements or 0. A client can set them to anything.
bool PositionsAreValid(const DocumentState& document);

// Whether `position` stands for the current node: on a node the current position does.
bool IsCurrentNode(const DocumentState& document, std::int32_t position);

// The name as it stands behind the '<'. `position` is an element's.
std::wstring_view ElementName(const DocumentState& document, std::int32_t position);

// A tag as TagSpan tells, but for its name, which isn't looked for.
struct TagBounds {
    std::size_t start;
    std::size_t nameFrom; // behind the marks at its beginning
    std::size_t end;
    bool instruction;
};

// The start tag of the element, or the current processing instruction; none for anything else.
std::optional<TagBounds> TagBoundsAt(const DocumentState& document, std::int32_t position);
std::optional<TagSpan> TagAt(const DocumentState& document, std::int32_t position);

// A scanner that stands behind the tag's name and sees nothing behind the tag.
TagScanner ScannerAfterName(const DocumentState& document, const TagSpan& tag);

// ---- Names, attributes and data as clients get them.
//
// Names, attributes and data, read out of the text where the index points. Attributes aren't
// indexed: each reading scans the tag anew, in place; only what is handed out is allocated. Throws
// std::bad_alloc and changes nothing.
//
// `position` is an element's record. On a current node the current position stands for the node.

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
