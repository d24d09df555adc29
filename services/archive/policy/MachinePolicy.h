// What the administrator has decided for this service. The values are stored under
// HKEY_LOCAL_MACHINE\SOFTWARE\Tavi Ren Computing\Ombrix\Policies, in the 64-bit or the 32-bit view,
// as REG_SZ or as REG_DWORD, which counts as its decimal text. They are read at each use and not
// kept.
#pragma once

#include <string>

namespace obarchive {

// The text of a value: that of the 64-bit view, or of the 32-bit one where the first has none.
// Empty when there is none or it is of another type. Any thread.
std::wstring PolicyText(const wchar_t* name);

// True when the value is "1" in either view.
bool PolicyIsOn(const wchar_t* name);

// An address from a policy; empty when it may not be opened. It may when it begins with "https://",
// has at most 2047 characters, and consists of printable ASCII without blanks, quotation marks and
// angle brackets.
std::wstring PolicyAddress(const wchar_t* name);

} // namespace obarchive
