// What is sent to a server, and what comes of it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "ObLib/Src/Win32/Secret.h"
#include "services/providers/http/HttpUrl.h"

namespace providers {

// Header names are compared in any case; values are bytes as on the wire.
struct HttpHeader {
    std::string name;
    std::string value;
};

// Basic authentication. Sent to this origin only, and only by https, to this machine, or where a
// policy allows plain http.
struct HttpLogin {
    HttpOrigin origin;
    std::wstring user;
    ObLib::Secret password;
};

// A part of a file as the body of a request. The caller owns the handle, which can read, and keeps
// it open.
struct HttpFilePart {
    HANDLE file = nullptr;
    std::uint64_t offset = 0; // bytes
    std::uint64_t size = 0;
};

// How long one step may take, in milliseconds.
struct HttpTimes {
    DWORD connect = 30'000;  // name, connection, TLS and the request's head
    DWORD transfer = 60'000; // one block of a body
    DWORD reply =
        120'000; // until the reply begins, once the body is sent: the server may copy it first
    DWORD replyBody = 180'000; // all of a reply's body, however steadily it comes
};

struct HttpRequest {
    std::string method = "GET";
    HttpUrl url;
    std::vector<HttpHeader> headers; // without Content-Length and Authorization
    // monostate: none. A Secret is wiped wherever a request has it.
    std::variant<std::monostate, std::string, HttpFilePart, ObLib::Secret> body;
    std::optional<HttpTimes> times;                   // in place of the session's
    const HttpLogin* login = nullptr;                 // null: nobody
    std::size_t longestReply = 4u << 20;              // bytes of the reply's body
    std::function<void(std::uint64_t sent)> progress; // bytes of the body; on the caller's thread
};

struct HttpReply {
    int status = 0;
    HttpUrl url; // that of the request, or the last one of a chain of redirects
    std::vector<HttpHeader> headers;
    std::string body;

    // The first header of this name; empty when there is none.
    std::string_view Header(std::string_view name) const;
};

enum class HttpFault {
    NoName,          // the host's name isn't known
    NoConnection,    // nothing answers there
    TimedOut,        // a step took longer than it may
    Certificate,     // see CertificateFault
    Cancelled,       // the caller's event was set
    BrokenOff,       // the connection ended in the middle; whether the server has acted isn't known
    Redirected,      // to another origin, or in answer to a request that changes something
    ReplyTooLong,    // the reply is longer than the request allows
    NeedsHttps,      // plain http isn't allowed to this server
    ServerNotListed, // the administrator allows other servers only
    ProxyLogin,     // the network's proxy wants a login, and doesn't take that of the system's user
    FileUnreadable, // the body's file can't be read, or is shorter than the part
    Failed,         // anything else; see the code
};

enum class CertificateFault {
    None,
    Date,
    Host,
    Issuer,
    Revoked,
    Unconfirmed, // it is unknown whether it was revoked
    Other
};

struct HttpError {
    HttpFault fault = HttpFault::Failed;
    DWORD code = 0; // the system's
    CertificateFault certificate = CertificateFault::None;
    std::wstring proxy; // after ProxyLogin: its name; empty where it isn't known
};

using HttpResult = std::variant<HttpReply, HttpError>;

} // namespace providers
