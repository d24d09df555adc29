// The text of an element that is to be added.
#pragma once

#include <cstdint>
#include <string>

#include "ObLibX/src/xml/document/ElementRecord.h"

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
