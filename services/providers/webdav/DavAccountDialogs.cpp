#include "services/providers/webdav/DavAccountDialogs.h"

#include <utility>

#include "services/providers/http/Utf8.h"
#include "services/providers/storage/ProviderIds.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/webdav/AccountPassword.h"
#include "services/providers/webdav/DavLinks.h"
#include "services/providers/webdav/DavLoginDialog.h"
#include "services/providers/webdav/DavPage.h"

namespace providers {
namespace {

using Servers = std::shared_ptr<DavServers>;

DavLoginCheck CheckOf(const Servers& servers) {
    return [servers](const HttpUrl& typed, const std::wstring& user, const ObLib::Secret& password,
                     HANDLE cancelled) {
        return CheckDavLogin(*servers, typed, user, password, cancelled);
    };
}

// Of an account that there is nothing but its folder is tried.
DavLoginCheck CheckOf(const Servers& servers, const DavSettings& known) {
    return [servers, root = known.root](const HttpUrl&, const std::wstring& user,
                                        const ObLib::Secret& password, HANDLE cancelled) {
        return CheckDavPassword(*servers, root, user, password, cancelled);
    };
}

DavLinkRules AskForRules(DavServers& servers, const DavAccess& access, HANDLE cancelled) {
    const DavClient client(servers.Session(), access.login, cancelled, servers.Patience());
    const auto found = servers.Shares(client, access);
    if (const auto* error = std::get_if<ShareError>(&found)) {
        return {{}, ShareSentence(*error, access.root.origin)};
    }
    const auto& api = std::get<0>(found);
    return api ? DavLinkRules{api->Rules(), {}} : DavLinkRules{};
}

DavPageEnd ShowPage(const Servers& servers, DavPage& page, const std::optional<DavAccess>& access,
                    HWND owner) {
    page.ask = [servers, access](HANDLE cancelled) {
        if (access) return AskForRules(*servers, *access, cancelled);
        return DavLinkRules{{}, OwnText(OB_TEXT_DAV_LINK_LOGGED_OUT)};
    };
    return ShowDavPage(owner, page);
}

// Whether a pattern has to be asked for. A server that couldn't be asked may make links itself.
bool LacksLinks(DavServers& servers, const DavAccess& access, const DavSettings& settings) {
    const auto found = servers.Known(access);
    return found && PlanLinks(settings, *found).way == LinkWay::None;
}

// An account that there is keeps all but its password.
std::optional<StorageAccount> Keep(const AccountBook& book, const DavSettings& settings,
                                   const std::wstring& known, const ObLib::Secret& password) {
    if (known.empty()) return AddDavAccount(book, settings, password);
    if (!ChangeDavAccount(book, known, settings) || !SaveAccountPassword(known, password)) {
        return {};
    }
    return book.Account(kWebDavId, known);
}

} // namespace

std::optional<StorageAccount> LogInToDav(const Servers& servers, HWND owner) {
    DavLogin login;
    login.check = CheckOf(servers);
    if (!ShowDavLogin(owner, login)) return {};
    const AccountBook& book = servers->Book();
    const std::wstring known = DavAccountOf(book, login.root, login.user);
    DavPage page;
    page.settings =
        ReadDavAccount(book, known).value_or(DavSettings{login.root, login.user, {}, false});
    const DavAccess access{login.root, {login.root.origin, login.user, login.password}};
    if (LacksLinks(*servers, access, page.settings) &&
        ShowPage(servers, page, access, owner) != DavPageEnd::Saved) {
        return {};
    }
    auto account = Keep(book, page.settings, known, login.password);
    if (!account) ShowSentence(owner, OwnText(OB_TEXT_DAV_NOT_SAVED));
    if (account) servers->ForgetRefused(account->key);
    return account;
}

bool AskForDavPassword(const Servers& servers, const std::wstring& accountKey,
                       const std::wstring& reason, HWND owner) {
    const auto settings = ReadDavAccount(servers->Book(), accountKey);
    if (!settings) return false;
    DavLogin login;
    login.address = FromUtf8(HttpUrlText(settings->root)).value_or(L"");
    login.user = settings->user;
    login.isKnown = true;
    login.reason = reason;
    login.check = CheckOf(servers, *settings);
    if (!ShowDavLogin(owner, login)) return false;
    if (SaveAccountPassword(accountKey, login.password)) {
        servers->ForgetRefused(accountKey);
        return true;
    }
    ShowSentence(owner, OwnText(OB_TEXT_DAV_NOT_SAVED));
    return false;
}

bool ManageDavAccount(const Servers& servers, const std::wstring& accountKey, bool hasLogOut,
                      HWND owner) {
    const AccountBook& book = servers->Book();
    const auto settings = ReadDavAccount(book, accountKey);
    if (!settings) return false;
    DavPage page{*settings, hasLogOut, {}};
    const DavPageEnd end = ShowPage(servers, page, servers->AccessTo(accountKey), owner);
    if (end == DavPageEnd::LogOut) RemoveDavAccount(book, accountKey);
    if (end == DavPageEnd::Saved && !ChangeDavAccount(book, accountKey, page.settings)) {
        ShowSentence(owner, OwnText(OB_TEXT_DAV_NOT_SAVED));
        return false;
    }
    return end != DavPageEnd::Cancelled;
}

} // namespace providers
