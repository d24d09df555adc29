// Which programs of others may be started: those that only an administrator could have put there.
#pragma once

#include <string>

namespace providers {

// The program's own full path, without links and short names, when it is a file below a folder for
// programs of all users, where normal users can't write. Empty for every other path, a
// relative one included, and when there is no such file. May throw std::bad_alloc.
std::wstring TrustedProgram(const std::wstring& path);

} // namespace providers
