// The text of an element that is to be added.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ObLibX/src/xml/document/ElementRecord.h"

namespace ObLibX {

inline constexpr std::wstring_view kLineEnd = L"\r\n";
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
