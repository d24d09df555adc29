// Where a record points at in the text: tags, names, attributes. Everything is read in place.
#pragma once

#include <cstdint>
#include <optional>
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
bool PositionsHold(const DocumentState& document);

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
TagScanner ScannerBehindName(const DocumentState& document, const TagSpan& tag);

} // namespace ObLibX
