#include "services/providers/webdav/DavCheck.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "services/providers/dav/DavAddress.h"
#include "services/providers/http/Utf8.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/webdav/DavSentence.h"

namespace providers {
namespace {

// The user waits for the result and can try again.
constexpr DavPatience kPatienceOfLogins{1, 500, 0, 0};

// Another address of the same server, or another server.
bool IsAboutAddress(const DavError& error) {
    constexpr DavFault kFaults[] = {DavFault::NotFound, DavFault::NotPossible, DavFault::NotDav,
                                    DavFault::OtherLogin, DavFault::Other};
    constexpr HttpFault kHttpFaults[] = {HttpFault::NoName,     HttpFault::Certificate,
                                         HttpFault::Redirected, HttpFault::ReplyTooLong,
                                         HttpFault::NeedsHttps, HttpFault::ServerNotListed};
    return error.fault == DavFault::Http
               ? std::ranges::find(kHttpFaults, error.http.fault) != std::end(kHttpFaults)
               : std::ranges::find(kFaults, error.fault) != std::end(kFaults);
}

DavCheckResult Check(DavServers& servers, const std::vector<HttpUrl>& candidates, DavAccess access,
                     HANDLE cancelled) {
    const DavClient client(servers.Session(), access.login, cancelled, kPatienceOfLogins);
    const auto found = FindRoot(client, candidates);
    if (const auto* error = std::get_if<DavError>(&found)) {
        return {DavSentence(*error, access.root.origin), {}, IsAboutAddress(*error)};
    }
    access.root = std::get<DavItem>(found).url;
    access.root.query.clear();
    if (!access.root.path.ends_with('/')) access.root.path += '/';
    if (HttpUrlText(access.root).size() > kLongestDavAddress) {
        const std::wstring host = TextFromUtf8(access.root.origin.host);
        return {FormatOwnText(OB_TEXT_DAV_LONG_ADDRESS, {host}), {}, true};
    }
    servers.Forget(access);
    static_cast<void>(servers.Shares(client, access));
    return {{}, std::move(access.root)};
}

} // namespace

DavCheckResult CheckDavLogin(DavServers& servers, const HttpUrl& typed, const std::wstring& user,
                             const ObLib::Secret& password, HANDLE cancelled) {
    return Check(servers, RootCandidates(typed, user), {typed, {typed.origin, user, password}},
                 cancelled);
}

DavCheckResult CheckDavPassword(DavServers& servers, const HttpUrl& root, const std::wstring& user,
                                const ObLib::Secret& password, HANDLE cancelled) {
    return Check(servers, {root}, {root, {root.origin, user, password}}, cancelled);
}

} // namespace providers
