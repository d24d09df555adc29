// Attributes set in the text of a tag. As in Editing.h, the records after a change are those of a
// fresh parse as long as every element has its end.
#pragma once

#include <cstdint>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

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

} // namespace ObLibX
