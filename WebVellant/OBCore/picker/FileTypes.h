// The dialog's list of file types.
#pragma once

#include <shobjidl.h>

#include <string>
#include <vector>

namespace obcore {

// The strings of a list that is closed by an empty one; none for a null list. Reads nothing at or
// behind `end`: a list that runs into it ends there.
std::vector<std::wstring> ReadStringList(const wchar_t* list, const wchar_t* end);

// Takes the strings as pairs of name and pattern. An odd number sets no file types at all; a
// failure of the dialog is silent. The dialog copies the texts.
void SetFileTypes(IFileDialog& dialog, const std::vector<std::wstring>& namesAndPatterns);

} // namespace obcore
