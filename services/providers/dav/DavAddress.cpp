#include "services/providers/dav/DavAddress.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <utility>

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

// The places among them that are at a server's root though its pages are below a folder.
constexpr std::size_t kPlacesAtRoot = 2;

// What a browser shows after the address of the server itself.
constexpr std::string_view kPages[] = {"/index.php/", "/apps/", "/login/", "/s/", "/f/"};

// Other schemes for the same two.
constexpr std::pair<std::string_view, std::string_view> kSchemes[] = {
    {"davs://", "https://"},
    {"dav://", "http://"},
    {"webdavs://", "https://"},
    {"webdav://", "http://"},
};

bool BeginsInAnyCase(std::string_view address, std::string_view scheme) {
    const auto isSame = [](char typed, char known) {
        return (typed >= 'A' && typed <= 'Z' ? typed | 0x20 : typed) == known;
    };
    return std::ranges::equal(address.substr(0, scheme.size()), scheme, isSame);
}

std::string WithScheme(std::string address) {
    for (const auto& [typed, meant] : kSchemes) {
        if (BeginsInAnyCase(address, typed))
            return std::string(meant) + address.substr(typed.size());
    }
    return address.find("://") == std::string::npos ? "https://" + address : address;
}

HttpUrl FolderUrl(HttpUrl url) {
    url.query.clear();
    if (!url.path.ends_with('/')) url.path += '/';
    return url;
}

// The part in front of a page's address; nothing when the address has no page in it.
std::optional<HttpUrl> InFrontOfPage(const HttpUrl& folder) {
    std::size_t end = std::string::npos;
    for (const std::string_view page : kPages) end = std::min(end, folder.path.find(page));
    if (end == std::string::npos) return {};
    HttpUrl front = folder;
    front.path.resize(end + 1);
    return front;
}

// Makes a list of addresses, each of them once.
class Candidates {
public:
    explicit Candidates(std::wstring_view user) : user_(EncodePathPart(ToUtf8(user))) {}

    void Add(const HttpUrl& url) {
        if (std::ranges::find(urls_, url) == urls_.end()) urls_.push_back(url);
    }
    void AddUsualPlaces(const HttpUrl& folder, std::size_t count = std::size(kUsualPlaces)) {
        for (const std::string_view place : std::span(kUsualPlaces).first(count)) {
            std::string path(place);
            if (const std::size_t at = path.find('%'); at != std::string::npos) {
                path.replace(at, 1, user_);
            }
            if (const auto url = ResolveHttpUrl(folder, path)) Add(*url);
        }
    }
    std::vector<HttpUrl> Take() { return std::move(urls_); }

private:
    std::string user_;
    std::vector<HttpUrl> urls_;
};

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
    Candidates candidates(user);
    candidates.Add(own);
    if (const auto front = InFrontOfPage(own)) {
        candidates.AddUsualPlaces(*front);
        candidates.Add(*front);
    }
    // A script has no folders below it.
    if (own.path.find("/index.php/") == std::string::npos) candidates.AddUsualPlaces(own);
    HttpUrl root = own;
    root.path = "/";
    candidates.AddUsualPlaces(root, kPlacesAtRoot);
    return candidates.Take();
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
