#include "services/providers/http/HttpUrl.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "ObLib/Src/AsciiLetters.h"
#include "ObLib/Src/PercentEncoding.h"

namespace providers {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

int HexValue(char c) {
    if (IsDigit(c)) return c - '0';
    const char low = ObLib::FoldAscii(c);
    return low >= 'a' && low <= 'f' ? low - 'a' + 10 : -1;
}

bool IsEncoding(std::string_view text, std::size_t at) {
    return text.size() - at >= 3 && HexValue(text[at + 1]) >= 0 && HexValue(text[at + 2]) >= 0;
}

// Encodes what may not be in a path or query, and leaves what is encoded.
std::string Tidied(std::string_view text) {
    constexpr std::string_view kAllowed = "!$&'()*+,;=:@/?";
    std::string tidy;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        const bool stays = ObLib::IsUnreserved(c) || kAllowed.find(c) != std::string_view::npos ||
                           (c == '%' && IsEncoding(text, at));
        if (stays)
            tidy += c;
        else
            ObLib::AppendPercentByte(tidy, c);
    }
    return tidy;
}

// "." and ".." parts are resolved; none leads above the top.
std::string WithoutDotSegments(std::string_view path) {
    std::vector<std::string_view> parts;
    bool endsInFolder = false;
    for (std::size_t at = 1; at <= path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string_view part = path.substr(at, end - at);
        endsInFolder = part == "." || part == "..";
        if (part == "..") {
            if (!parts.empty()) parts.pop_back();
        } else if (part != ".") {
            parts.push_back(part);
        }
        at = end + 1;
    }
    std::string clean;
    for (const std::string_view part : parts) clean.append("/").append(part);
    if (endsInFolder || clean.empty()) clean += "/";
    return clean;
}

void SetPathAndQuery(HttpUrl& url, std::string_view text) {
    text = text.substr(0, text.find('#'));
    const std::size_t query = text.find('?');
    const std::string_view path = text.substr(0, query);
    url.path = WithoutDotSegments(path.empty() ? "/" : Tidied(path));
    url.query = query == std::string_view::npos ? "" : Tidied(text.substr(query));
}

bool IsHostByte(char c) {
    return ObLib::IsAsciiLetter(c) || IsDigit(c) || c == '-' || c == '.' || c == '_' || (c & 0x80);
}

bool IsHost(std::string_view host) {
    if (host.size() > 255) return false;
    if (host.starts_with('[') && host.ends_with(']') && host.size() > 3) {
        return std::all_of(host.begin() + 1, host.end() - 1,
                           [](char c) { return HexValue(c) >= 0 || c == ':' || c == '.'; });
    }
    return !host.empty() && host.front() != '.' &&
           std::all_of(host.begin(), host.end(), IsHostByte);
}

std::optional<std::uint16_t> Port(std::string_view digits) {
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    if (error != std::errc() || end != digits.data() + digits.size() || port == 0)
        return std::nullopt;
    return port;
}

std::optional<HttpOrigin> Origin(bool isSecure, std::string_view text) {
    HttpOrigin origin{isSecure, "", static_cast<std::uint16_t>(isSecure ? 443 : 80)};
    const std::size_t bracket = text.rfind(']');
    const std::size_t colon = text.rfind(':');
    if (colon != std::string_view::npos && (bracket == std::string_view::npos || colon > bracket)) {
        const auto port = Port(text.substr(colon + 1));
        if (!port) return std::nullopt;
        origin.port = *port;
        text = text.substr(0, colon);
    }
    if (!IsHost(text)) return std::nullopt;
    origin.host = text;
    std::transform(origin.host.begin(), origin.host.end(), origin.host.begin(),
                   ObLib::FoldAscii<char>);
    return origin;
}

// Whether a text begins with this, in any case.
bool Begins(std::string_view text, std::string_view with) {
    return text.size() >= with.size() &&
           std::equal(with.begin(), with.end(), text.begin(),
                      [](char a, char b) { return a == ObLib::FoldAscii(b); });
}

// Length of "http://" or "https://" in front; 0 when there is neither.
std::size_t SchemeLength(std::string_view address) {
    return Begins(address, "https://") ? 8 : Begins(address, "http://") ? 7 : 0;
}

std::optional<HttpUrl> Short(HttpUrl url) {
    if (url.path.size() + url.query.size() > kLongestUrl - 300) return std::nullopt;
    return url;
}

// Whether a reference has a scheme of its own, such as "mailto:".
bool HasScheme(std::string_view reference) {
    const std::size_t colon = reference.find_first_of(":/?#");
    return colon != std::string_view::npos && colon > 0 && reference[colon] == ':';
}

} // namespace

std::optional<HttpUrl> ParseHttpUrl(std::string_view address) {
    const std::size_t scheme = SchemeLength(address);
    if (scheme == 0 || address.size() > kLongestUrl) return std::nullopt;
    const std::string_view rest = address.substr(scheme);
    const std::size_t end = std::min(rest.find_first_of("/?#\\"), rest.size());
    if (end < rest.size() && rest[end] == '\\') return std::nullopt;
    const auto origin = Origin(scheme == 8, rest.substr(0, end));
    if (!origin) return std::nullopt;
    HttpUrl url{*origin};
    SetPathAndQuery(url, rest.substr(end));
    return Short(std::move(url));
}

std::optional<HttpUrl> ResolveHttpUrl(const HttpUrl& base, std::string_view reference) {
    if (reference.size() > kLongestUrl) return std::nullopt;
    if (HasScheme(reference)) return ParseHttpUrl(reference);
    if (reference.starts_with("//")) {
        return ParseHttpUrl((base.origin.isSecure ? "https:" : "http:") + std::string(reference));
    }
    HttpUrl url = base;
    if (reference.starts_with('/')) {
        SetPathAndQuery(url, reference);
    } else if (reference.starts_with('?')) {
        SetPathAndQuery(url, base.path + std::string(reference));
    } else if (!reference.empty() && reference.front() != '#') {
        SetPathAndQuery(url,
                        base.path.substr(0, base.path.rfind('/') + 1) + std::string(reference));
    }
    return Short(std::move(url));
}

std::string HostAndPort(const HttpOrigin& origin) {
    const bool isUsual = origin.port == (origin.isSecure ? 443 : 80);
    return isUsual ? origin.host : origin.host + ":" + std::to_string(origin.port);
}

std::string HttpUrlText(const HttpUrl& url) {
    return (url.origin.isSecure ? "https://" : "http://") + HostAndPort(url.origin) + url.path +
           url.query;
}

bool IsLoopback(const HttpOrigin& origin) {
    const std::string_view host = origin.host;
    if (host == "localhost" || host == "[::1]") return true;
    // A name such as "127.example.org" is somebody else's.
    return host.starts_with("127.") && std::count(host.begin(), host.end(), '.') == 3 &&
           std::all_of(host.begin(), host.end(), [](char c) { return IsDigit(c) || c == '.'; });
}

void AppendPathPart(std::string& to, std::string_view part) {
    ObLib::AppendPercentEncoded(to, part, &ObLib::IsUnreserved);
}

std::string EncodePathPart(std::string_view part) {
    std::string encoded;
    AppendPathPart(encoded, part);
    return encoded;
}

std::optional<std::string> DecodePercent(std::string_view text) {
    std::string decoded;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            decoded += text[at];
            continue;
        }
        if (!IsEncoding(text, at)) return std::nullopt;
        const int byte = HexValue(text[at + 1]) * 16 + HexValue(text[at + 2]);
        if (byte == 0) return std::nullopt;
        decoded += static_cast<char>(byte);
        at += 2;
    }
    return decoded;
}

HttpUrl UrlBelow(const HttpUrl& url, std::string_view part) {
    HttpUrl below = url;
    if (!below.path.ends_with('/')) below.path += '/';
    below.path += EncodePathPart(part);
    return below;
}

} // namespace providers
