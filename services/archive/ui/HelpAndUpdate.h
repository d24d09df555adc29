// The help entry and the update entry. Neither uses the network: the shell opens a page in the
// user's browser.
#pragma once

#include <windows.h>

#include <string>

namespace obarchive {

// Policy values with an https address, REG_SZ.
inline constexpr wchar_t kHelpAddressPolicy[] = L"HelpAddress";
inline constexpr wchar_t kUpdateAddressPolicy[] = L"UpdateAddress";

// Opens the policy's address or, without one, the page `help\index.html` beside this module. When
// neither opens, a message shows the address or the path. `owner` may be null or no longer exist.
void ShowHelp(HWND owner);

// Shows the installed version and, when the policy has an address, offers to open it.
void ShowInstalledVersion(HWND owner);

// The file version of this module, as "1.2.3.4"; empty when it has none.
std::wstring ServiceVersion();

} // namespace obarchive
