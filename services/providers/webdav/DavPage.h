// The account page of a WebDAV server: how its files get links.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "services/providers/webdav/DavServers.h"

namespace providers {

enum class DavPageEnd : std::uint8_t { Cancelled, Saved, LogOut };

// What the account's server reports about links.
struct DavLinkRules {
    std::optional<ShareRules> rules; // nothing: it makes no links
    std::wstring sentence;           // why it can't be asked; empty: it was
};

struct DavPage {
    DavSettings settings; // shown first; after Saved with what the user entered
    bool hasLogOut = false;
    // Asks the server; on a thread of its own, which may outlive the dialog, so that the function
    // owns all that it uses.
    std::function<DavLinkRules(HANDLE cancelled)> ask;
};

// Shows the page in front of the owner, which may be null, and waits. A pattern that makes no links
// is explained and keeps the page open; so does a missing one where it is needed. On the thread of
// the owner.
DavPageEnd ShowDavPage(HWND owner, DavPage& page);

} // namespace providers
