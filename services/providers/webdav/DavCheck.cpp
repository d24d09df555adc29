#include "services/providers/webdav/DavCheck.h"

#include <utility>

#include "services/providers/dav/DavAddress.h"
#include "services/providers/webdav/DavSentence.h"

namespace providers {
namespace {

// The user waits for the result and can try again.
constexpr DavPatience kPatienceOfLogins{1, 500, 0, 0};

DavCheckResult Check(DavServers& servers, const std::vector<HttpUrl>& candidates, DavAccess access,
                     HANDLE cancelled) {
    const DavClient client(servers.Session(), access.login, cancelled, kPatienceOfLogins);
    const auto found = FindRoot(client, candidates);
    if (const auto* error = std::get_if<DavError>(&found)) {
        return {DavSentence(*error, access.root.origin), {}};
    }
    access.root = std::get<DavItem>(found).url;
    access.root.query.clear();
    if (!access.root.path.ends_with('/')) access.root.path += '/';
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
