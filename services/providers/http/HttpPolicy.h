// What the administrator has decided about servers (docs/policies.md). Read at each use and not
// kept.
#pragma once

#include <string_view>

#include "services/providers/http/HttpUrl.h"

namespace providers {

enum class ServerRule {
    Allowed,
    NeedsHttps, // plain http, neither to this machine nor allowed by AllowPlainHttp
    NotListed,  // AllowedCloudServers has other servers
};

// Whether requests may go to this server. On any thread.
ServerRule RuleFor(const HttpOrigin& origin);

// Whether a host is on a list with commas. "*.example.org" means every host below example.org.
bool IsHostListed(std::string_view host, std::string_view list);

// Whether a switch is on: the text "1" in either view of the registry.
bool IsCloudPolicyOn(const wchar_t* name);

} // namespace providers
