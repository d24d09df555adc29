// The login to a WebDAV server.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "ObLib/Src/Win32/Secret.h"
#include "services/providers/webdav/DavCheck.h"

namespace providers {

// Tries a login; on a thread of its own, which may outlive the dialog, so that the function owns
// all that it uses. Returns as CheckDavLogin.
using DavLoginCheck =
    std::function<DavCheckResult(const HttpUrl& typed, const std::wstring& user,
                                 const ObLib::Secret& password, HANDLE cancelled)>;

struct DavLogin {
    std::wstring address; // shown first; what was typed
    std::wstring user;    // shown first; after a login the one that was typed
    bool isKnown = false; // an account that there is: only its password can be typed
    std::wstring reason;  // why the user is asked; may be empty
    DavLoginCheck check;

    // After a login.
    HttpUrl root;
    ObLib::Secret password;
};

// Shows the dialog in front of the owner, which may be null, and waits. What can't be used is
// explained in the dialog, which then stays open. False after a cancel. On the thread of the owner.
bool ShowDavLogin(HWND owner, DavLogin& login);

} // namespace providers
