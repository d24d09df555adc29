#include "services/providers/dav/DavAddress.h"

#include "services/providers/http/Utf8.h"

namespace providers {
namespace {

// Where servers usually have it; "%" is the user.
constexpr std::string_view kUsualPlaces[] = {
    "remote.php/dav/files/%/",
    "remote.php/webdav/",
    "webdav/",
    "dav/",
};

// Other schemes for the same two.
constexpr std::pair<std::string_view, std::string_view> kSchemes[] = {
    {"davs://", "https://"},
    {"dav://", "http://"},
    {"webdavs://", "https://"},
    {"webdav://", "http://"},
};

std::string WithScheme(std::string address) {
    for (const auto& [typed, meant] : kSchemes) {
        if (address.starts_with(typed)) return std::string(meant) + address.substr(typed.size());
    }
    return address.find("://") == std::string::npos ? "https://" + address : address;
}

HttpUrl FolderUrl(HttpUrl url) {
    url.query.clear();
    if (!url.path.ends_with('/')) url.path += '/';
    return url;
}

// Whether another address may still be the right one.
bool IsElsewhere(const DavError& error) {
    return error.fault == DavFault::NotFound || error.fault == DavFault::NotPossible ||
           error.fault == DavFault::NotDav || error.fault == DavFault::Forbidden ||
           error.fault == DavFault::Other || error.fault == DavFault::ServerFailed ||
           IsHttp(error, HttpFault::Redirected);
}

} // namespace

std::optional<HttpUrl> TypedAddress(std::wstring_view typed) {
    const std::string text = ToUtf8(typed);
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return std::nullopt;
    return ParseHttpUrl(
        WithScheme(text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1)));
}

std::vector<HttpUrl> RootCandidates(const HttpUrl& typed, std::wstring_view user) {
    const HttpUrl own = FolderUrl(typed);
    std::vector<HttpUrl> candidates{own};
    for (const std::string_view place : kUsualPlaces) {
        std::string path(place);
        if (const std::size_t at = path.find('%'); at != std::string::npos) {
            path.replace(at, 1, EncodePathPart(ToUtf8(user)));
        }
        if (const auto url = ResolveHttpUrl(own, path)) candidates.push_back(*url);
    }
    return candidates;
}

DavResult<DavItem> FindRoot(const DavClient& client, const std::vector<HttpUrl>& candidates) {
    std::optional<DavError> first;
    for (const HttpUrl& url : candidates) {
        const auto there = client.Look(url);
        const auto* item = std::get_if<DavItem>(&there);
        if (item && item->isFolder) return *item;
        const DavError error =
            item ? DavError{DavFault::NotDav, 207, {}, std::nullopt} : std::get<DavError>(there);
        if (!first) first = error;
        if (!IsElsewhere(error)) return error;
    }
    return first.value_or(DavError{DavFault::NotDav, 0, {}, std::nullopt});
}

} // namespace providers
