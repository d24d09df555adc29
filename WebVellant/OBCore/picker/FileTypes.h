// The dialog's list of file types.
#pragma once

#include <shobjidl.h>

#include <string>
#include <vector>

namespace obcore {

// The strings of a list that an empty string closes; none for a null list. Nothing is read from
// `end` on: an unclosed list ends there.
std::vector<std::wstring> ReadStringList(const wchar_t* list, const wchar_t* end);

// Takes the strings as pairs of name and pattern. An odd number sets no file types at all; a
// failure of the dialog is only traced. The dialog copies the texts.
void SetFileTypes(IFileDialog& dialog, const std::vector<std::wstring>& namesAndPatterns);

} // namespace obcore
