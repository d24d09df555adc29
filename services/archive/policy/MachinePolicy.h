// What the administrator has decided for this service. The values stand under
// HKEY_LOCAL_MACHINE\SOFTWARE\Tavi Ren Computing\Ombrix\Policies, in the 64-bit or the 32-bit view,
// as REG_SZ. They are read when they are needed and never kept.
#pragma once

#include <string>

namespace obarchive {

// The text of a value: that of the 64-bit view, or of the 32-bit one where the first has none.
// Empty when there is none or it is of another type. Any thread.
std::wstring PolicyText(const wchar_t* name);

// True when the value is "1" in either view.
bool PolicyIsOn(const wchar_t* name);

// An address that a policy names, or an empty text when it isn't one that may be opened: it must
// begin with "https://", hold nothing but printable ASCII without blanks and quotation marks, and
// be no longer than 2047 characters.
std::wstring PolicyAddress(const wchar_t* name);

} // namespace obarchive
