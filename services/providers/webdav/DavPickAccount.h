// An account of a WebDAV server as the picker uses it.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "services/providers/dav/DavClient.h"
#include "services/providers/storage/StorageProvider.h"

namespace providers {

// An account that the user can pick from. `list`, `share` and `end` run on threads of their own and
// own all that they use: after `cancelled` is set, a call that doesn't return at once goes on while
// the picker, and whoever showed it, have gone. An exception is a failure without a sentence.
struct DavPickAccount {
    StorageAccount account;
    HttpOrigin server; // named in the sentence of a failure

    // What is in a folder; `folder` has the names of the folders from the account's root down to
    // it, none for the root itself. An account whose password is missing: DavFault::WrongLogin.
    std::function<DavResult<std::vector<DavItem>>(const std::vector<std::wstring>& folder,
                                                  HANDLE cancelled)>
        list;

    // A link to a file that `list` has returned. Called once for a file, again only after a
    // failure.
    std::function<ShareResult(const DavItem& file, HANDLE cancelled)> share;

    // Ends a link that `share` has made and that nobody gets to know. On a thread of its own, which
    // nobody waits for. May be empty.
    std::function<void(const ShareResult& link)> end = {};

    // Lets the user enter the account's password again, in front of the picker and on its thread.
    // False without one that the server accepts. May be empty.
    std::function<bool(HWND owner)> logIn = {};
};

} // namespace providers
