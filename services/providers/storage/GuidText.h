// Names of keys in the registry that reveal nothing: GUIDs as texts.
#pragma once

#include <string>

namespace providers {

// A new one, "{01234567-89AB-CDEF-0123-456789ABCDEF}"; empty when the system has none.
std::wstring NewGuidText();

// Whether the text looks like one, with capital letters. Anything else never becomes part of a
// registry path.
bool IsGuidText(const std::wstring& text);

} // namespace providers
