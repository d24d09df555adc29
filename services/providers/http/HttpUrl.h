// Addresses of the web, as requests need them: http and https, without user, password and fragment.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace providers {

// Where a request goes. Two addresses are of one origin when all three are equal.
struct HttpOrigin {
    bool isSecure = true; // https
    std::string host;     // UTF-8, ASCII letters in lower case; an IPv6 address with its brackets
    std::uint16_t port = 443;

    bool operator==(const HttpOrigin&) const = default;
};

struct HttpUrl {
    HttpOrigin origin;
    std::string path =
        "/";           // begins with a slash; percent-encoded, so ASCII only; without dot segments
    std::string query; // with its question mark; may be empty

    bool operator==(const HttpUrl&) const = default;
};

// Longest address that is taken or made.
inline constexpr std::size_t kLongestUrl = 8192; // bytes

// An absolute address in UTF-8. Blanks, letters beyond ASCII and what else may not be in an address
// get percent-encoded; what is encoded already stays. Nothing when it is no http or https address,
// names a user, has an odd host or port, or is too long.
std::optional<HttpUrl> ParseHttpUrl(std::string_view address);

// What a server writes in a reply, which may be relative to the address of the request.
std::optional<HttpUrl> ResolveHttpUrl(const HttpUrl& base, std::string_view reference);

// In full, as for a header; the port is left out where it is the usual one.
std::string HttpUrlText(const HttpUrl& url);

// "host" or "host:port".
std::string HostAndPort(const HttpOrigin& origin);

// Whether the host is this machine itself: "localhost", 127.0.0.0/8, [::1].
bool IsLoopback(const HttpOrigin& origin);

// One part of a path, with everything encoded but letters, digits and "-._~".
std::string EncodePathPart(std::string_view part);
// The same, after what `to` has. Makes no other copy of the text.
void AppendPathPart(std::string& to, std::string_view part);

// Percent-decoded; nothing when an encoding is cut or decodes to NUL.
std::optional<std::string> DecodePercent(std::string_view text);

// The folder below, or file in, the folder at `url`, whose path gets a slash at its end if it has
// none.
HttpUrl UrlBelow(const HttpUrl& url, std::string_view part);

} // namespace providers
