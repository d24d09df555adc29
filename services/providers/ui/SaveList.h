// Saves the receipt where the user wants it.
#pragma once

#include <windows.h>

#include <string>

namespace providers {

// Asks for a name with the system's dialog until the list is saved as UTF-8 text or the user
// cancels. A file that exists is never overwritten: a sentence then asks for another name.
void SaveList(HWND owner, const std::wstring& headline, const std::wstring& list);

// Saves the list under a name that isn't taken. False, with the last error and with nothing
// changed, when there is a file of this name or it can't be written.
bool SaveListAs(const std::wstring& path, const std::wstring& headline, const std::wstring& list);

} // namespace providers
