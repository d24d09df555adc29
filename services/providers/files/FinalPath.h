// The path under which the system opened a file.
#pragma once

#include <windows.h>

#include <string>

namespace providers {

// The full path with the prefix for long paths, without links and short names in it, whatever path
// led to the file or folder. Empty when the file system gives none. May throw std::bad_alloc.
std::wstring FinalPath(HANDLE open);

} // namespace providers
