// Attributes set in the text of a tag.
#pragma once

#include <cstdint>

#include "ObLibX/src/xml/document/DocumentState.h"

namespace ObLibX {

// Replaces the attribute's value or adds the attribute right behind the last token of the tag, on
// an element or on the current processing instruction; before the others when the last one is a '='
// without a value, which would take it for its own. kAddKeepReferences is the one flag that counts.
// An attribute without '=' gets one. False with nothing changed: in a stream mode, where there is
// no such tag or it has no name, for a null or unwritable name, a null value, and when the tag or
// the text would become too long. Throws std::bad_alloc and changes nothing.
bool SetAttribute(DocumentState& document, std::int32_t position, const wchar_t* name,
                  const wchar_t* value, std::uint32_t flags);

// As SetAttribute in every mode: for a stream's current element, whose text is still there.
bool EditAttribute(DocumentState& document, std::int32_t position, const wchar_t* name,
                   const wchar_t* value, std::uint32_t flags);

} // namespace ObLibX
