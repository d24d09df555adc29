// What the user goes through to log in to an account of a WebDAV server, and to change it.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>
#include <string>

#include "services/providers/storage/StorageProvider.h"
#include "services/providers/webdav/DavServers.h"

namespace providers {

// All of them on the thread of the owner, which may be null.

// Adds an account, or takes a new password for the one that there is of this user and folder. Where
// the server makes no links, the page asks for a pattern. Nothing after a cancel, or after a
// failure that was shown to the user.
std::optional<StorageAccount> LogInToDav(const std::shared_ptr<DavServers>& servers, HWND owner);

// Asks for the password of an account that there is, and keeps it. `reason`: why, as a sentence;
// may be empty. False after a cancel.
bool AskForDavPassword(const std::shared_ptr<DavServers>& servers, const std::wstring& accountKey,
                       const std::wstring& reason, HWND owner);

// The account page. False after a cancel; the account may be logged out afterwards.
bool ManageDavAccount(const std::shared_ptr<DavServers>& servers, const std::wstring& accountKey,
                      bool hasLogOut, HWND owner);

} // namespace providers
