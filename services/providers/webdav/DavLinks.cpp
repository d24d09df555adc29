#include "services/providers/webdav/DavLinks.h"

#include <algorithm>
#include <utility>

#include "services/providers/folder/FolderLink.h"
#include "services/providers/http/Utf8.h"
#include "services/providers/storage/PickLimits.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/webdav/DavSentence.h"
#include "services/providers/webdav/LinkPassword.h"

namespace providers {
namespace {

std::wstring SentenceAbout(UINT text, const HttpOrigin& server) {
    return FormatOwnText(text, {TextFromUtf8(server.host)});
}

ShareResult NotShared(std::wstring sentence) {
    ShareResult result;
    result.sentence = std::move(sentence);
    return result;
}

// Servers write the same name in several ways; a link has one.
std::string PlainlyEncoded(std::string_view path) {
    std::string encoded;
    for (std::size_t at = 0; at <= path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string_view part = path.substr(at, end - at);
        const auto name = DecodePercent(part);
        encoded += name ? EncodePathPart(*name) : std::string(part);
        if (end < path.size()) encoded += '/';
        at = end + 1;
    }
    return encoded;
}

// An account, and the file of it that is to get a link.
struct Shared {
    DavServers& servers;
    const std::wstring& accountKey;
    const DavAccess& access;
    const HttpUrl& file;
    bool isOwnFile;
};

// The password of the link, the same at each try.
std::optional<ObLib::Secret> PasswordOf(const Shared& shared, const DavServers::Share& share,
                                        const ShareRules& rules) {
    if (!share.password.Empty()) return share.password;
    auto made = NewLinkPassword(rules);
    if (made) shared.servers.SetPassword(shared.accountKey, shared.file, *made);
    return made;
}

ShareResult NotShared(const Shared& shared, const ShareError& error) {
    // The rules may have changed since they were asked for.
    const bool isByRule =
        error.fault == ShareFault::Refused || error.fault == ShareFault::NeedsPassword;
    if (isByRule) shared.servers.Forget(shared.access);
    ShareResult result = NotShared(ShareSentence(error, shared.file.origin));
    result.needsLogin = error.fault == ShareFault::Dav && error.dav.fault == DavFault::WrongLogin;
    if (result.needsLogin) {
        shared.servers.NoteRefused(shared.accountKey, shared.access.login.password);
    }
    return result;
}

// The password is missing, or it was refused before.
ShareResult NeedsLogin(DavServers& servers, const std::wstring& accountKey,
                       const HttpOrigin& server) {
    ShareResult result =
        NotShared(servers.IsRefused(accountKey) ? SentenceAbout(OB_TEXT_DAV_WRONG_LOGIN, server)
                                                : OwnText(OB_TEXT_DAV_LINK_LOGGED_OUT));
    result.needsLogin = true;
    return result;
}

ShareResult ShareByServer(const Shared& shared, const DavClient& client, const LinkPlan& plan) {
    const HttpUrl& file = shared.file;
    const DavServers::Share share = shared.servers.ShareOf(shared.accountKey, file);
    std::optional<ObLib::Secret> password;
    if (plan.hasPassword) {
        password = PasswordOf(shared, share, plan.server->Rules());
        if (!password) return NotShared(SentenceAbout(OB_TEXT_DAV_NO_LINK_MADE, file.origin));
    }
    // Where each link has to end, the server sets the day itself.
    const ShareWish wish{file, password ? &*password : nullptr, {}, share.label, shared.isOwnFile};
    const auto made = plan.server->Make(client, wish);
    if (const auto* error = std::get_if<ShareError>(&made)) return NotShared(shared, *error);
    const auto& link = std::get<LinkShare>(made);
    shared.servers.ForgetShare(shared.accountKey, file);
    ShareResult result{true, link.link, TextFromUtf8(link.id), {}, {}};
    if (password) result.password = TextFromUtf8(password->Text());
    return result;
}

ShareResult ShareByPattern(const DavSettings& settings, const HttpUrl& file) {
    std::wstring link = LinkByPattern(settings, file);
    if (link.empty() || link.size() > kLongestLink) {
        return NotShared(SentenceAbout(OB_TEXT_DAV_ODD_LINK, file.origin));
    }
    return {true, std::move(link), {}, {}, {}};
}

} // namespace

LinkPlan PlanLinks(const DavSettings& settings, const std::optional<ShareApi>& server) {
    const bool isPasswordWanted = settings.hasLinkPasswords || IsLinkPasswordPolicyOn();
    if (server && server->Rules().canShareByLink) {
        return {LinkWay::ByServer, server, isPasswordWanted || server->Rules().needsPassword, {}};
    }
    const auto none = [&](UINT text) {
        return LinkPlan{LinkWay::None, {}, false, SentenceAbout(text, settings.root.origin)};
    };
    if (isPasswordWanted) return none(OB_TEXT_DAV_NO_LINK_PASSWORDS);
    if (settings.pattern.empty()) return none(OB_TEXT_DAV_NO_WAY_TO_LINK);
    return {LinkWay::ByPattern, {}, false, {}};
}

std::wstring LinkByPattern(const DavSettings& settings, const HttpUrl& file) {
    if (!IsBelow(file, settings.root)) return {};
    const std::string below = file.path.substr(settings.root.path.size());
    return PatternLink(settings.pattern, TextFromUtf8(PlainlyEncoded(below)));
}

ShareResult ShareDavFile(DavServers& servers, const std::wstring& accountKey, const HttpUrl& file,
                         bool isOwnFile, HANDLE cancelled) {
    const auto settings = ReadDavAccount(servers.Book(), accountKey);
    if (!settings) return NotShared(OwnText(OB_TEXT_DAV_LINK_LOGGED_OUT));
    const auto access = servers.UsableAccessTo(accountKey);
    if (!access) return NeedsLogin(servers, accountKey, settings->root.origin);
    if (!IsBelow(file, access->root)) {
        return NotShared(SentenceAbout(OB_TEXT_DAV_NOT_FOUND, access->root.origin));
    }
    const Shared shared{servers, accountKey, *access, file, isOwnFile};
    const DavClient client(servers.Session(), access->login, cancelled, servers.Patience());
    const auto server = servers.Shares(client, *access);
    if (const auto* error = std::get_if<ShareError>(&server)) {
        // A link by the pattern doesn't wait for an interface that is silent.
        const bool isSilent =
            error->fault == ShareFault::Dav && IsHttp(error->dav, HttpFault::TimedOut);
        if (isSilent && PlanLinks(*settings, {}).way == LinkWay::ByPattern)
            return ShareByPattern(*settings, file);
        return NotShared(shared, *error);
    }
    const LinkPlan plan = PlanLinks(*settings, std::get<0>(server));
    if (plan.way == LinkWay::None) return NotShared(plan.sentence);
    if (plan.way == LinkWay::ByPattern) return ShareByPattern(*settings, file);
    return ShareByServer(shared, client, plan);
}

bool EndDavLink(DavServers& servers, const std::wstring& accountKey, const std::wstring& shareId,
                std::int32_t days, HANDLE cancelled) {
    const auto access = servers.UsableAccessTo(accountKey);
    if (!access || shareId.empty() || days <= 0) return false;
    const DavClient client(servers.Session(), access->login, cancelled, servers.Patience());
    const auto server = servers.Shares(client, *access);
    const auto* api = std::get_if<0>(&server);
    if (!api || !*api) return false;
    return std::holds_alternative<ShareDate>(
        (*api)->SetExpiry(client, ToUtf8(shareId), DaysLater(Today(), days)));
}

void RemoveDavLink(DavServers& servers, const std::wstring& accountKey,
                   const std::wstring& shareId) {
    const auto access = servers.UsableAccessTo(accountKey);
    if (!access || shareId.empty()) return;
    const DavClient client(servers.Session(), access->login, nullptr, servers.Patience());
    const auto server = servers.Shares(client, *access);
    const auto* api = std::get_if<0>(&server);
    if (api && *api) static_cast<void>((*api)->Remove(client, ToUtf8(shareId)));
}

std::wstring ShareSentence(const ShareError& error, const HttpOrigin& server) {
    switch (error.fault) {
    case ShareFault::Dav:
        // What isn't there is the file, not the account's folder; and no list of files is shown.
        if (error.dav.fault == DavFault::NotFound || IsHttp(error.dav, HttpFault::ReplyTooLong)) {
            return SentenceAbout(OB_TEXT_DAV_NO_LINK_MADE, server);
        }
        return DavSentence(error.dav, server);
    case ShareFault::Off:
        return SentenceAbout(OB_TEXT_DAV_LINKS_OFF, server);
    case ShareFault::NeedsPassword:
    case ShareFault::Refused:
        if (error.message.empty()) return SentenceAbout(OB_TEXT_DAV_NO_LINK_MADE, server);
        return FormatOwnText(OB_TEXT_DAV_NO_LINK_BECAUSE,
                             {TextFromUtf8(server.host), error.message});
    case ShareFault::NoPassword:
        return SentenceAbout(OB_TEXT_DAV_NO_LINK_PASSWORDS, server);
    case ShareFault::OddLink:
    case ShareFault::Damaged:
        break;
    }
    return SentenceAbout(OB_TEXT_DAV_ODD_LINK, server);
}

} // namespace providers
