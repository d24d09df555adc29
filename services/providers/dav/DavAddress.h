// Finds the folder of an account from what a user types as its address.
#pragma once

#include <string>
#include <string_view>

#include "services/providers/dav/DavClient.h"

namespace providers {

// What a user typed, as an address: "https://" is added where there is no scheme, blanks around it
// are left out. Nothing when it is none.
std::optional<HttpUrl> TypedAddress(std::wstring_view typed);

// The addresses to try, in order, at most a dozen: the one that was typed; where a browser shows a
// page of a server by it, the usual places of WebDAV in front of that page; those below the
// address; those at the server's root.
std::vector<HttpUrl> RootCandidates(const HttpUrl& typed, std::wstring_view user);

// The first of them that is a folder of WebDAV. A wrong password is tried once only. When none is
// one, the error is why the address itself isn't.
DavResult<DavItem> FindRoot(const DavClient& client, const std::vector<HttpUrl>& candidates);

} // namespace providers
