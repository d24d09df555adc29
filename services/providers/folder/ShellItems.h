// Paths and items of the shell's dialogs.
#pragma once

#include <string>
#include <vector>

#include "ObLib/Src/Win32/ComResources.h"

namespace providers {

// A new dialog of the shell for files that exist; empty when there is none to be had.
ObLib::ComPtr<IFileOpenDialog> MakeOpenDialog();

// The folder or file at a path; empty when the shell doesn't find it.
ObLib::ComPtr<IShellItem> ShellItemAt(const std::wstring& path);

// The item's full path in the file system; empty when it has none.
std::wstring PathOf(IShellItem& item);

// The full paths of what is chosen in the dialog. An item without a path gives an empty one.
std::vector<std::wstring> ChosenPaths(IFileOpenDialog& dialog);

} // namespace providers
