// What the suites of HttpSession share.
#pragma once

#include <gtest/gtest.h>

#include "services/providers/http/HttpSession.h"
#include "services/providers/http/Utf8.h"
#include "tests/support/CloudServers.h"

namespace providers {

inline HttpUrl ServerUrl(const wchar_t* name, std::string_view file = "") {
    const auto url = ParseHttpUrl(ToUtf8(obtest::ServerValue(name)) + std::string(file));
    EXPECT_TRUE(url.has_value());
    return url.value_or(HttpUrl{});
}

inline HttpLogin LoginFor(const HttpUrl& url) {
    return {url.origin, obtest::ServerValue(L"SERVER_USER"),
            ObLib::Secret(ToUtf8(obtest::ServerValue(L"SERVER_PASSWORD")).c_str())};
}

inline HttpRequest Request(const char* method, const HttpUrl& url, const HttpLogin* login) {
    HttpRequest request;
    request.method = method;
    request.url = url;
    request.login = login;
    return request;
}

// The status of a reply, or minus the fault.
inline int Outcome(const HttpResult& result) {
    if (const auto* reply = std::get_if<HttpReply>(&result)) return reply->status;
    return -1 - static_cast<int>(std::get<HttpError>(result).fault);
}
inline int Outcome(HttpFault fault) { return -1 - static_cast<int>(fault); }

} // namespace providers
