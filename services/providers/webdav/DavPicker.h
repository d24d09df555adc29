// Picking files of WebDAV accounts: a dialog of this module, as the shell knows no such folders.
#pragma once

#include <windows.h>

#include <cstddef>
#include <span>
#include <string>

#include "services/providers/storage/StorageProvider.h"
#include "services/providers/webdav/DavPickAccount.h"

namespace providers {

// Shows the picker in front of the owner, which may be null, until the user has picked files whose
// links fit the text for the mail (FitsLinkText), or leaves. Begins with the account `first`.
// Failures are explained in the dialog; a sentence is returned only when the dialog can't be shown.
// Passwords of links are shown by the picker. `displayName`: the provider's. On the thread that
// owns the dialogs.
PickResult PickFromServers(std::span<const DavPickAccount> accounts, std::size_t first,
                           const std::wstring& displayName, HWND owner);

} // namespace providers
