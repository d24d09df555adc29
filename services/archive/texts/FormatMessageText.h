// Formats texts of this module.
#pragma once

#include <windows.h>

#include <initializer_list>
#include <string>

namespace obarchive {

// The text of the string table with "%1" to "%9" replaced by `inserts`; an insert is used as it is,
// also when it has a "%" in it. "%%" becomes one per cent sign; a place without an insert stays.
// Empty when there is no such text. Any thread.
std::wstring FormatMessageText(UINT id, std::initializer_list<std::wstring> inserts);

} // namespace obarchive
