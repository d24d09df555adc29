// Trying a login at a server.
#pragma once

#include <windows.h>

#include <string>

#include "services/providers/webdav/DavServers.h"

namespace providers {

struct DavCheckResult {
    std::wstring sentence;       // why the login can't be used; empty: it can, and `root` is known
    HttpUrl root;                // the folder of the account
    bool isAboutAddress = false; // another address may help, and another password doesn't
};

// Looks for the folder of the account at a typed address and below it. What the server reports
// about links is then known to `servers`, if it could be asked. On any thread; returns soon after
// `cancelled` is set, with any result.
DavCheckResult CheckDavLogin(DavServers& servers, const HttpUrl& typed, const std::wstring& user,
                             const ObLib::Secret& password, HANDLE cancelled);

// As above, for the folder of an account that there is: nothing else is tried.
DavCheckResult CheckDavPassword(DavServers& servers, const HttpUrl& root, const std::wstring& user,
                                const ObLib::Secret& password, HANDLE cancelled);

} // namespace providers
