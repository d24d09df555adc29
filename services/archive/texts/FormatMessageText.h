// A text of this module with its places filled.
#pragma once

#include <windows.h>

#include <initializer_list>
#include <string>

namespace obarchive {

// The text of the string table with "%1" to "%9" replaced by `inserts`, which are not looked into
// for further places. "%%" becomes one per cent sign; a place without an insert stays as it is.
// Empty when there is no such text. Any thread.
std::wstring FormatMessageText(UINT id, std::initializer_list<std::wstring> inserts);

} // namespace obarchive
