// Elements added and attributes set: text spliced in place, and the numbers after it moved.
//
// The records after a change are those of a fresh parse, in another order of their indices, as long
// as every element has its end. An element added with kAddNoEndTag has none: <r></r> becomes
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
    0x8; // what looks like a reference in the value isn't encoded
inline constexpr std::uint32_t kAddNoEndTag = 0x10;  // <name> alone; a value is refused
inline constexpr std::uint32_t kAddAtStart = 0x1000; // at the start of the parent's content, or in
                                                     // place of the current node
inline constexpr std::uint32_t kAddBefore = 0x2000;  // before the current element, not after it
inline constexpr std::uint32_t kAddAsChild = 0x4000; // as a child of the current element

// Adds <name>value</name>, or <name/> when the value is null or empty. The position and `flags`
// (kAdd...) decide where: by default after the current element, and at the end of the parent's
// content when there is none. The new element becomes the current element, or with kAddAsChild the
// current child.
//
// False with nothing changed: in a stream mode; with kAddAsChild without a current element; for a
// value with kAddNoEndTag; for a name that isn't writable (IsWritableName); when a tag would be
// longer than its length field can count (a name of more than 1,020 units with a value, or of a
// parent that gets its end tag; of some 4,194,300 units without a value); when the text would be
// longer than 2^31 - 1 units; inside or next to an element whose own tag is too long for its
// record. Throws std::bad_alloc and changes nothing.
bool AddElement(DocumentState& document, const wchar_t* name, const wchar_t* value,
                std::uint32_t flags);

// Replaces the attribute's value, or adds the attribute after the last token of the tag, on an
// element or on the current processing instruction. The new attribute comes before the others when
// the last one is a '=' without a value, which would take the new one for its value. An attribute
// without '=' gets one. The name ends as EndsCallerName has it, as in GetAttribute.
// kAddKeepReferences is the only flag that matters.
//
// False with nothing changed: in a stream mode; where there is no such tag or the tag has no name;
// for a null value and a null or unwritable name; when the tag or the text would become too long.
// Throws std::bad_alloc and changes nothing.
bool SetAttribute(DocumentState& document, std::int32_t position, const wchar_t* name,
                  const wchar_t* value, std::uint32_t flags);

// As SetAttribute in every mode: for a stream's current element, whose text is still there.
bool EditAttribute(DocumentState& document, std::int32_t position, const wchar_t* name,
                   const wchar_t* value, std::uint32_t flags);

// ---- The text of an element that is to be added, for both modes that add one

inline constexpr std::uint32_t kEndTagMarks = 3; // </ >

struct NewElement {
    std::wstring text;
    std::uint32_t startTag = 0; // units
    std::uint32_t endTag = 0;
    bool ended = true; // false: a start tag alone

    // Sets the numbers of the element, whose text begins at `start`, and no link.
    void FillRecord(ElementRecord& record, std::size_t start) const;
};

// Writes the element's text by AddElement's flags. False for a name that isn't writable, a value
// with kAddNoEndTag, and a tag that would be too long for its length field. Throws std::bad_alloc.
bool WriteElement(const wchar_t* name, const wchar_t* value, std::uint32_t flags,
                  NewElement& element);

} // namespace ObLibX
