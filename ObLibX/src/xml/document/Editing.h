// Elements added: text spliced in place, and the numbers after it moved.
//
// The records after a change are those of a fresh parse, in another order of their indices, as long
// as every element has its end. An element added with kAddNoEndTag has not: <r></r> becomes
// <r><c></r>, where c is marked unended and everything else keeps its record. A fresh parse of that
// text would report c, mark the document and r as badly formed, and stop after </r>.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// Flags of AddElement.
inline constexpr std::uint32_t kAddCdata = 0x1;        // the value as a CDATA section
inline constexpr std::uint32_t kAddNoLineEnds = 0x2;   // no line ends around the new element
inline constexpr std::uint32_t kAddBlankInEmpty = 0x4; // <name /> with the blank
inline constexpr std::uint32_t kAddKeepReferences =
    0x8;                                             // in the value, what looks like a reference
inline constexpr std::uint32_t kAddNoEndTag = 0x10;  // <name> alone; a value is refused
inline constexpr std::uint32_t kAddAtStart = 0x1000; // at the start of the parent's content, or for
                                                     // the node
inline constexpr std::uint32_t kAddBefore = 0x2000;  // before the current element, not after it
inline constexpr std::uint32_t kAddAsChild = 0x4000; // as a child of the current element

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

// ---- The text of an element that is to be added, for both modes that add one

inline constexpr std::uint32_t kEndTagMarks = 3; // </ >

struct NewElement {
    std::wstring text;
    std::uint32_t startTag = 0; // units
    std::uint32_t endTag = 0;
    bool ended = true; // false: a start tag alone

    // The numbers of the element, whose text begins at `start`; its links are left alone.
    void FillRecord(ElementRecord& record, std::size_t start) const;
};

// Writes the element's text as AddElement's flags say. False for a name that isn't writable, a
// value with kAddNoEndTag, and a tag that would pass its length field. Throws std::bad_alloc.
bool WriteElement(const wchar_t* name, const wchar_t* value, std::uint32_t flags,
                  NewElement& element);

} // namespace ObLibX
