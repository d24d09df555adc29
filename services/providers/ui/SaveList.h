// Saves the receipt where the user wants it.
#pragma once

#include <windows.h>

#include <string>

namespace providers {

// Asks for a name with the system's dialog until the list is saved as UTF-8 text or the user
// cancels. A file that exists is never overwritten: a sentence then asks for another name.
void SaveList(HWND owner, const std::wstring& headline, const std::wstring& list);

} // namespace providers
