// Removing temporary files: by the wipe program where it can be found, by deletion otherwise.
#pragma once

#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obcore {

// Starts obwipe64.exe with `arguments`. Null when the program is neither beside this library nor
// where the main product is registered, or doesn't start.
ObLib::UniqueKernelHandle StartWipeProcess(const std::wstring& arguments);

// Hands the items to the wipe program, without waiting for it. Empties the list when the program
// was started, leaves it as it was when not. A quotation mark within an item isn't escaped.
//
// The program gets an empty first word, /timeout:120 and each item in quotation marks. It has to
// split its command line at these marks itself: a folder ends in a backslash, and the usual rules
// for arguments take a backslash and the closing mark for a mark within the argument.
void LaunchWipe(std::vector<std::wstring>& items);

// LaunchWipe for both lists as one, files first. Both come back empty when the program was started,
// unchanged when not: the caller has to act then.
void WipeFiles(std::vector<std::wstring>& files, std::vector<std::wstring>& folders);

} // namespace obcore
