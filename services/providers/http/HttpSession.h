// Requests to servers of the web, by the system's HTTP client and its settings for proxies.
//
// The client's module is loaded by the first session: a process that uses no cloud never has it.
#pragma once

#include <windows.h>

#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "services/providers/http/HttpTypes.h"
#include "services/providers/http/InternetHandle.h"

namespace providers {

class HttpSession {
public:
    // Pins this module in its process: the client may report the end of a request that was given up
    // at any time later.
    explicit HttpSession(const HttpTimes& times = {});

    // Sends a request and waits for its reply, of any status, or an error. Returns at once when the
    // event `cancelled` (null: none) is set, whatever the request waits for. Redirects are followed
    // within one origin for requests that change nothing. No cookies, no login at a server but the
    // request's own, no way around a bad certificate. A proxy of the system's settings that wants
    // it gets the login of the system's user. On any thread, also several at the same time. Throws
    // std::bad_alloc only.
    HttpResult Send(const HttpRequest& request, HANDLE cancelled) const;

private:
    HttpResult SendOnce(const HttpRequest& request, const HttpUrl& url, HANDLE cancelled) const;

    // The proxy of a server by what was reported for this connection; a kept one reports nothing,
    // and is one that an earlier request has opened.
    std::wstring ProxyOf(const HttpOrigin& server,
                         const std::optional<std::wstring>& reported) const;

    HttpTimes times_;
    mutable std::mutex lock_;
    mutable std::vector<std::pair<HttpOrigin, std::wstring>> proxies_;
    UniqueInternetHandle session_; // null when the client can't be had
};

} // namespace providers
