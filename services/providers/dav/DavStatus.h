// How a request to a WebDAV server can end.
#pragma once

#include <cstdint>
#include <optional>
#include <variant>

#include "services/providers/http/HttpTypes.h"

namespace providers {

enum class DavFault {
    Http,         // no reply: see the HttpError
    WrongLogin,   // 401
    OtherLogin,   // 401 of a server that takes no user name and password as they are sent
    Forbidden,    // 403
    NotFound,     // 404, 410
    NotPossible,  // 405: the server knows no such request here
    Conflict,     // 409: the folder above is missing
    InTheWay,     // found by a look: a file in place of a folder, or the other way round
    Taken,        // 412: the name is taken, or the file has changed
    TooLarge,     // 413
    Locked,       // 423
    TooMany,      // 429, and 503 with a time: the server asks for patience
    ServerFailed, // 5xx
    NoSpace,      // 507
    NotDav,       // a reply that isn't WebDAV
    WrongSize,    // what is stored has another length than what was sent
    Other,        // any other status
};

// Of a request that has done only a part of what it should.
inline constexpr int kPartlyDone = 207;

struct DavError {
    DavFault fault = DavFault::Other;
    int status = 0; // of the reply; 0: none
    HttpError http; // with DavFault::Http
    // After TooMany: when the server wants to be asked again, in seconds from now.
    std::optional<std::uint32_t> retryAfter;
};

template <class Value>
using DavResult = std::variant<Value, DavError>;

// Nothing for a success (2xx).
std::optional<DavError> DavErrorOf(const HttpReply& reply);

// When the server wrote this reply, by its own clock, in seconds since 1601.
std::optional<std::uint64_t> ServerTime(const HttpReply& reply);

inline DavError DavErrorOf(const HttpError& error) {
    return {DavFault::Http, 0, error, std::nullopt};
}

inline bool IsHttp(const DavError& error, HttpFault fault) {
    return error.fault == DavFault::Http && error.http.fault == fault;
}

// Whether the server may have acted in spite of the error, so that a look has to decide: the
// connection ended before a reply came, or a server between gave up waiting and replied itself.
bool MayHaveActed(const DavError& error);

// Whether the server may act even later than now: a server between, or this client, only gave up
// waiting for it.
bool MayActLater(const DavError& error);

} // namespace providers
