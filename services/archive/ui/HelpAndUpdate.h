// What the help entry and the update entry show. Neither asks anything of the network itself: a
// page is opened by the shell, in the user's own browser.
#pragma once

#include <windows.h>

#include <string>

namespace obarchive {

// Policy values with an https address, REG_SZ.
inline constexpr wchar_t kHelpAddressPolicy[] = L"HelpAddress";
inline constexpr wchar_t kUpdateAddressPolicy[] = L"UpdateAddress";

// Opens the address of the policy, or else the page `help\index.html` beside this module. When
// neither can be opened, a message says where help would be. `owner` may be null or gone.
void ShowHelp(HWND owner);

// Tells which version is installed and, when the policy names an address, offers to open it.
void ShowInstalledVersion(HWND owner);

// The file version of this module, as "1.2.3.4"; empty when it carries none.
std::wstring ServiceVersion();

} // namespace obarchive
