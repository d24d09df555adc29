#include "services/providers/dav/DavClient.h"

#include <algorithm>

#include "services/providers/dav/DavReply.h"
#include "services/providers/http/Utf8.h"

namespace providers {
namespace {

constexpr char kWanted[] =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?><propfind xmlns=\"DAV:\"><prop>"
    "<resourcetype/><getcontentlength/><getetag/><quota-available-bytes/><quota-used-bytes/>"
    "</prop></propfind>";

HttpRequest RequestFor(const char* method, const HttpUrl& url) {
    HttpRequest request;
    request.method = method;
    request.url = url;
    return request;
}

DavResult<HttpReply> OfSuccess(DavResult<HttpReply> result) {
    const auto* reply = std::get_if<HttpReply>(&result);
    const auto error = reply ? DavErrorOf(*reply) : std::nullopt;
    if (error) return *error;
    return result;
}

// Of a request that does one thing: where a reply lists several ends, something has failed.
DavResult<HttpReply> OfOneStep(DavResult<HttpReply> result) {
    const auto* reply = std::get_if<HttpReply>(&result);
    if (reply && reply->status == kPartlyDone)
        return DavError{DavFault::ServerFailed, kPartlyDone, {}, std::nullopt};
    return result;
}

std::string_view WithoutSlash(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
    return path;
}

// What the user has to do something about before anything else can be found out.
bool IsOfTheUser(const DavError& error) {
    return error.fault == DavFault::WrongLogin || IsHttp(error, HttpFault::Cancelled);
}

// A file whose name isn't UTF-8 can still be linked, by its address. A folder is found by its name.
std::optional<std::wstring> ShownName(const std::string& name, bool isFolder) {
    auto exact = FromUtf8(name);
    if (exact || isFolder) return exact;
    const auto size = static_cast<int>(name.size());
    std::wstring text(name.size(), L'\0');
    const int length = MultiByteToWideChar(CP_UTF8, 0, name.data(), size, text.data(), size);
    text.resize(static_cast<std::size_t>(std::max(length, 0)));
    return text;
}

// The path of an address decoded, as servers write the same name in several ways.
std::optional<std::string> PlainPath(const HttpUrl& url) {
    return DecodePercent(WithoutSlash(url.path));
}

// The name of an entry in a folder; empty when it is the folder itself; nothing when it is
// elsewhere.
std::optional<std::string> NameIn(const HttpUrl& folder, const HttpUrl& entry) {
    const auto above = PlainPath(folder);
    const auto path = PlainPath(entry);
    if (!above || !path || entry.origin != folder.origin) return std::nullopt;
    if (*path == *above) return std::string();
    const std::string front = *above == "/" ? "/" : *above + "/";
    if (!path->starts_with(front)) return std::nullopt;
    const std::string_view encoded = WithoutSlash(entry.path);
    const auto name = DecodePercent(encoded.substr(encoded.rfind('/') + 1));
    if (!name || front.size() + name->size() != path->size()) return std::nullopt; // deeper
    return name;
}

std::optional<DavItem> ItemOf(const HttpUrl& base, const DavEntry& entry) {
    const auto url = ResolveHttpUrl(base, entry.href);
    if (!url) return std::nullopt;
    const auto bytes = NameIn(base, *url);
    if (!bytes) return std::nullopt;
    auto name = ShownName(*bytes, entry.isFolder);
    if (!name) return std::nullopt;
    const bool isWeak = entry.etag.starts_with("W/");
    return DavItem{
        *url,   std::move(*name), entry.isFolder, entry.size, entry.etag.substr(isWeak ? 2 : 0),
        isWeak, entry.freeBytes,  entry.usedBytes};
}

} // namespace

DavClient::DavClient(const HttpSession& session, const HttpLogin& login, HANDLE cancelled,
                     const DavPatience& patience)
    : session_(session), login_(login), cancelled_(cancelled), patience_(patience) {}

std::optional<DavError> DavClient::Pause(DWORD milliseconds) const {
    if (!cancelled_) {
        Sleep(milliseconds);
        return std::nullopt;
    }
    if (WaitForSingleObject(cancelled_, milliseconds) == WAIT_TIMEOUT) return std::nullopt;
    return DavErrorOf(HttpError{HttpFault::Cancelled});
}

DavResult<bool> DavClient::WasDone(const DavError& failure,
                                   const std::function<DavResult<bool>()>& isDone) const {
    DWORD pause = patience_.pause;
    for (int looks = 0;; ++looks, pause *= 2) {
        auto done = isDone();
        const auto* error = std::get_if<DavError>(&done);
        // A server that doesn't reply to the question either isn't asked for minutes.
        const bool isEnd =
            error ? error->fault == DavFault::Http || IsOfTheUser(*error) : std::get<bool>(done);
        if (isEnd || !MayActLater(failure) || looks == patience_.looks) return done;
        if (const auto cancelled = Pause(pause)) return *cancelled;
    }
}

DavResult<HttpReply> DavClient::SendForAny(HttpRequest request) const {
    request.login = &login_;
    for (int waits = 0;; ++waits) {
        HttpResult result = session_.Send(request, cancelled_);
        if (const auto* error = std::get_if<HttpError>(&result)) return DavErrorOf(*error);
        auto& reply = std::get<HttpReply>(result);
        const auto error = DavErrorOf(reply);
        const bool isWaitedFor = error && error->fault == DavFault::TooMany && error->retryAfter &&
                                 waits < patience_.waits &&
                                 *error->retryAfter <= patience_.longestWait / 1000;
        if (!isWaitedFor) return std::move(reply);
        if (const auto cancelled = Pause(*error->retryAfter * 1000)) return *cancelled;
    }
}

DavResult<HttpReply> DavClient::AskForAny(const HttpRequest& request) const {
    DWORD pause = patience_.pause;
    for (int breaks = 0;; ++breaks, pause *= 2) {
        auto result = SendForAny(request);
        const auto* error = std::get_if<DavError>(&result);
        if (!error || !IsHttp(*error, HttpFault::BrokenOff) || breaks == patience_.breaks)
            return result;
        if (const auto cancelled = Pause(pause)) return *cancelled;
    }
}

DavResult<HttpReply> DavClient::Send(HttpRequest request) const {
    return OfSuccess(SendForAny(std::move(request)));
}

DavResult<HttpReply> DavClient::Ask(const HttpRequest& request) const {
    return OfSuccess(AskForAny(request));
}

DavResult<std::vector<DavItem>> DavClient::Find(const HttpUrl& url, const char* depth) const {
    HttpRequest request = RequestFor("PROPFIND", url);
    request.headers = {{"Depth", depth}, {"Content-Type", "application/xml; charset=utf-8"}};
    request.body = std::string(kWanted);
    request.longestReply = kLongestDavReply;
    const auto result = Ask(request);
    if (const auto* error = std::get_if<DavError>(&result)) return *error;
    const auto& reply = std::get<HttpReply>(result);
    const auto entries = reply.status == 207 ? ReadMultistatus(reply.body) : std::nullopt;
    if (!entries) return DavError{DavFault::NotDav, reply.status, {}, std::nullopt};
    std::vector<DavItem> items;
    for (const DavEntry& entry : *entries)
        if (auto item = ItemOf(reply.url, entry)) items.push_back(std::move(*item));
    return items;
}

DavResult<DavItem> DavClient::Look(const HttpUrl& url) const {
    auto found = Find(url, "0");
    if (const auto* error = std::get_if<DavError>(&found)) return *error;
    for (DavItem& item : std::get<0>(found))
        if (item.name.empty()) return std::move(item);
    return DavError{DavFault::NotDav, 207, {}, std::nullopt};
}

DavResult<std::vector<DavItem>> DavClient::List(const HttpUrl& folder) const {
    auto found = Find(folder, "1");
    if (auto* items = std::get_if<0>(&found))
        std::erase_if(*items, [](const DavItem& item) { return item.name.empty(); });
    return found;
}

// Whatever comes back, a look decides: the folder may have been made by somebody else meanwhile, or
// the reply is lost.
std::optional<DavError> DavClient::MakeFolder(const HttpUrl& url) const {
    const auto made = OfOneStep(Send(RequestFor("MKCOL", url)));
    const auto* failure = std::get_if<DavError>(&made);
    if (!failure) return std::nullopt;
    if (failure->fault != DavFault::NotPossible && !MayHaveActed(*failure)) return *failure;
    const auto there = Look(url);
    if (const auto* item = std::get_if<DavItem>(&there))
        return item->isFolder ? std::nullopt : std::optional(*failure);
    const auto& error = std::get<DavError>(there);
    if (error.fault != DavFault::NotFound) return error;
    if (failure->fault == DavFault::ServerFailed || failure->status == 408) return *failure;
    const auto again = Send(RequestFor("MKCOL", url));
    if (const auto* second = std::get_if<DavError>(&again)) return *second;
    return std::nullopt;
}

DavResult<HttpUrl> DavClient::MakeFolders(const HttpUrl& root,
                                          const std::vector<std::string>& parts) const {
    HttpUrl url = root;
    for (const std::string& part : parts) {
        url = UrlBelow(url, part);
        const auto there = Look(url); // without a slash at its end: it may be a file
        url.path += '/';
        const auto* missing = std::get_if<DavError>(&there);
        if (missing && missing->fault != DavFault::NotFound) return *missing;
        if (!missing && !std::get<DavItem>(there).isFolder)
            return DavError{DavFault::InTheWay, 0, {}, std::nullopt};
        if (!missing) continue;
        if (const auto error = MakeFolder(url)) return *error;
    }
    return url;
}

DavResult<bool> DavClient::HasMoved(const HttpUrl& from, const HttpUrl& to,
                                    std::uint64_t size) const {
    const auto old = Look(from);
    if (std::holds_alternative<DavItem>(old)) return false;
    const auto& error = std::get<DavError>(old);
    if (error.fault != DavFault::NotFound) return error;
    const auto moved = Look(to);
    if (const auto* missing = std::get_if<DavError>(&moved)) return *missing;
    if (std::get<DavItem>(moved).size != size)
        return DavError{DavFault::WrongSize, 0, {}, std::nullopt};
    return true;
}

std::optional<DavError> DavClient::Move(const HttpUrl& from, const HttpUrl& to,
                                        std::uint64_t size) const {
    HttpRequest request = RequestFor("MOVE", from);
    request.headers = {{"Destination", HttpUrlText(to)}, {"Overwrite", "F"}};
    DWORD pause = patience_.pause;
    for (int breaks = 0;; ++breaks, pause *= 2) {
        const auto result = OfOneStep(Send(request));
        const auto* failure = std::get_if<DavError>(&result);
        if (!failure) return std::nullopt;
        // The system's client repeats a request without a body when a kept connection has ended:
        // then the second one is refused because of what the first one has done.
        const bool isRefused =
            failure->fault == DavFault::Taken || failure->fault == DavFault::NotFound;
        if (!isRefused && !MayHaveActed(*failure)) return *failure;
        const auto moved = WasDone(*failure, [&] { return HasMoved(from, to, size); });
        const auto* error = std::get_if<DavError>(&moved);
        const bool hasMoved = !error && std::get<bool>(moved);
        if (isRefused) return hasMoved ? std::nullopt : std::optional(*failure);
        if (error && IsOfTheUser(*error)) return *error;
        if (hasMoved) return std::nullopt;
        const bool isBroken = IsHttp(*failure, HttpFault::BrokenOff);
        if (error || !isBroken || breaks == patience_.breaks) return *failure;
        if (const auto cancelled = Pause(pause)) return *cancelled;
    }
}

DavResult<DavDeletion> DavClient::Delete(const HttpUrl& url, const std::string& version) const {
    const auto there = Look(url);
    if (const auto* error = std::get_if<DavError>(&there)) {
        if (error->fault == DavFault::NotFound) return DavDeletion::Gone;
        return *error;
    }
    const auto& item = std::get<DavItem>(there);
    if (version.empty() || item.version != version) return DavDeletion::Changed;
    HttpRequest request = RequestFor("DELETE", url);
    // A weak tag never fits this header; the look was just now.
    if (!item.isWeak) request.headers = {{"If-Match", version}};
    const auto result = OfOneStep(Send(request));
    const auto* error = std::get_if<DavError>(&result);
    if (!error || error->fault == DavFault::NotFound) return DavDeletion::Gone;
    if (error->fault == DavFault::Taken) return DavDeletion::Changed;
    return *error;
}

std::optional<DavError> DavClient::Discard(const HttpUrl& url) const {
    const auto result = OfOneStep(Ask(RequestFor("DELETE", url)));
    const auto* error = std::get_if<DavError>(&result);
    if (!error || error->fault == DavFault::NotFound) return std::nullopt;
    return *error;
}

DavResult<bool> DavClient::CanPatch(const HttpUrl& url) const {
    const auto result = Ask(RequestFor("OPTIONS", url));
    if (const auto* error = std::get_if<DavError>(&result)) return *error;
    const auto& headers = std::get<HttpReply>(result).headers;
    return std::any_of(headers.begin(), headers.end(), [](const HttpHeader& header) {
        return header.value.find("sabredav-partialupdate") != std::string::npos;
    });
}

} // namespace providers
