#include "services/providers/webdav/WebDav.h"

#include <algorithm>
#include <utility>

#include "services/providers/http/Utf8.h"
#include "services/providers/storage/PickLimits.h"
#include "services/providers/storage/ProviderIds.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/webdav/AccountPassword.h"
#include "services/providers/webdav/DavAccountDialogs.h"
#include "services/providers/webdav/DavIconIds.h"
#include "services/providers/webdav/DavPicker.h"
#include "services/providers/webdav/DavSentence.h"
#include "services/providers/worker/Event.h"

namespace providers {

using obcontract::ProviderCapability;

namespace {

// The chooser waits for the space, and a deletion has other runs.
constexpr DavPatience kNoPatience{0, 0, 0, 0};

UploadResult Failed(std::wstring sentence) { return {UploadEnd::Failed, {}, std::move(sentence)}; }

UploadResult NotUploaded(const std::wstring& name, const std::wstring& why) {
    return Failed(FormatOwnText(OB_TEXT_DAV_NOT_UPLOADED, {name, why}));
}

std::wstring WrongLoginSentence(const HttpOrigin& server) {
    return DavSentence({DavFault::WrongLogin, 401, {}, std::nullopt}, server);
}

// What the login of an account begins with: nothing without a refusal.
std::wstring ReasonForLogin(DavServers& servers, const std::wstring& key) {
    const auto settings = ReadDavAccount(servers.Book(), key);
    return settings && servers.IsRefused(key) ? WrongLoginSentence(settings->root.origin)
                                              : std::wstring();
}

// One upload of one account: what has to be known and asked before its first byte.
class LinkedUpload {
public:
    LinkedUpload(std::shared_ptr<DavServers> servers, const std::wstring& key,
                 const UploadFile& file, UploadProgress& progress)
        : servers_(std::move(servers)), key_(key), file_(file), progress_(progress) {}

    UploadResult Run(DavUpload& upload) {
        if (!ReadDavAccount(servers_->Book(), key_)) {
            return Failed(FormatOwnText(OB_TEXT_DAV_LOGGED_OUT, {file_.name}));
        }
        if (!servers_->UsableAccessTo(key_) && !AskForPassword(ReasonForLogin(*servers_, key_))) {
            return Cancelled();
        }
        if (auto ended = MakeSureOfLinks()) return std::move(*ended);
        auto access = servers_->AccessTo(key_);
        if (!access) return Failed(FormatOwnText(OB_TEXT_DAV_LOGGED_OUT, {file_.name}));
        const HttpOrigin server = access->root.origin;
        return upload.Run(
            std::move(*access), file_, progress_,
            [this, server](HWND owner) -> std::optional<HttpLogin> {
                if (!AskForDavPassword(servers_, key_, WrongLoginSentence(server), owner))
                    return {};
                auto now = servers_->AccessTo(key_);
                if (!now) return {};
                return std::move(now->login);
            });
    }

private:
    using Ended = std::optional<UploadResult>; // nothing: the upload goes on

    static UploadResult Cancelled() { return {UploadEnd::Cancelled, {}, {}}; }
    bool AskForPassword(const std::wstring& reason) {
        bool isGiven = false;
        return progress_.Ask([&](HWND owner) {
            isGiven = AskForDavPassword(servers_, key_, reason, owner);
        }) && isGiven;
    }

    // Nothing is uploaded that can't be linked. A server that can't be asked now is left to the
    // upload, which knows what to do about it.
    Ended MakeSureOfLinks() {
        for (;;) {
            const auto access = servers_->AccessTo(key_);
            const auto settings = ReadDavAccount(servers_->Book(), key_);
            if (!access || !settings) return {};
            const DavClient client(servers_->Session(), access->login, progress_.Cancelled(),
                                   kNoPatience);
            const auto server = servers_->Shares(client, *access);
            if (const auto* error = std::get_if<ShareError>(&server)) {
                const bool isLogin =
                    error->fault == ShareFault::Dav && error->dav.fault == DavFault::WrongLogin;
                if (!isLogin) return {};
                if (!AskForPassword(WrongLoginSentence(access->root.origin))) return Cancelled();
                continue;
            }
            const LinkPlan plan = PlanLinks(*settings, std::get<0>(server));
            if (plan.way == LinkWay::ByPattern) return CheckLength(*settings);
            if (plan.way == LinkWay::ByServer) return {};
            if (!AskForPattern()) return NotUploaded(file_.name, plan.sentence);
        }
    }
    bool AskForPattern() {
        bool isChanged = false;
        return progress_.Ask([&](HWND owner) {
            isChanged = ManageDavAccount(servers_, key_, false, owner);
        }) && isChanged;
    }
    Ended CheckLength(const DavSettings& settings) const {
        HttpUrl target = settings.root;
        for (const std::string& part : PartsOf(file_.folder + L'\\' + file_.name)) {
            target = UrlBelow(target, part);
        }
        if (LinkByPattern(settings, target).size() <= kLongestLink) return {};
        return Failed(FormatOwnText(OB_TEXT_FOLDER_LINK_TOO_LONG, {file_.name}));
    }

    std::shared_ptr<DavServers> servers_;
    const std::wstring& key_;
    const UploadFile& file_;
    UploadProgress& progress_;
};

void NoteRefusal(DavServers& servers, const std::wstring& key, const DavAccess& access,
                 const DavError& error) {
    if (error.fault == DavFault::WrongLogin) servers.NoteRefused(key, access.login.password);
}

// Whether the login of another account removes the file. Servers have several users at one address:
// what isn't there, or is another version, may be another user's folder.
template <class Remove>
bool IsRemovedByAnother(DavServers& servers, const std::wstring& other, const HttpUrl& url,
                        HANDLE ended, Remove remove) {
    const auto access = servers.UsableAccessTo(other);
    if (!access || IsSet(ended)) return false;
    const DavClient client(servers.Session(), access->login, ended, kNoPatience);
    const auto there = client.Look(url);
    if (const auto* error = std::get_if<DavError>(&there)) {
        NoteRefusal(servers, other, *access, *error);
        return false;
    }
    return remove(client, access->root, nullptr) == DeletionEnd::Gone;
}

// Removes a file by the login of its account. An account that is logged out, or can't be read now,
// has left a promise: another one with the file in its folder carries it out, and until there is
// one the file can't be reached.
template <class Remove>
DeletionEnd RemoveBy(DavServers& servers, const std::wstring& key, const std::wstring& path,
                     HANDLE ended, Remove remove) {
    const auto url = ParseHttpUrl(ToUtf8(path));
    if (!url) return DeletionEnd::Changed;
    if (IsSet(ended)) return DeletionEnd::Unreachable;
    if (ReadDavAccount(servers.Book(), key)) {
        const auto access = servers.UsableAccessTo(key);
        if (!access) return DeletionEnd::Unreachable;
        const DavClient client(servers.Session(), access->login, ended, kNoPatience);
        DavError failure;
        const DeletionEnd end = remove(client, access->root, &failure);
        if (end == DeletionEnd::Unreachable) NoteRefusal(servers, key, *access, failure);
        return end;
    }
    const auto others = DavAccountsAround(servers.Book(), *url);
    const bool isGone = std::ranges::any_of(others, [&](const std::wstring& other) {
        return IsRemovedByAnother(servers, other, *url, ended, remove);
    });
    return isGone ? DeletionEnd::Gone : DeletionEnd::Unreachable;
}

DavResult<std::vector<DavItem>> ListFolder(DavServers& servers, const std::wstring& key,
                                           const std::vector<std::wstring>& folder,
                                           HANDLE cancelled) {
    const auto access = servers.UsableAccessTo(key);
    if (!access) return DavError{DavFault::WrongLogin, 401, {}, std::nullopt};
    HttpUrl url = access->root;
    for (const std::wstring& part : folder) {
        url = UrlBelow(url, ToUtf8(part));
        url.path += '/';
    }
    const DavClient client(servers.Session(), access->login, cancelled, servers.Patience());
    auto listed = client.List(url);
    if (const auto* error = std::get_if<DavError>(&listed)) {
        NoteRefusal(servers, key, *access, *error);
    }
    return listed;
}

DavPickAccount PickableAccount(const std::shared_ptr<DavServers>& servers,
                               const StorageAccount& account, const DavSettings& settings) {
    return {
        account,
        settings.root.origin,
        [servers, key = account.key](const std::vector<std::wstring>& folder, HANDLE cancelled) {
            return ListFolder(*servers, key, folder, cancelled);
        },
        [servers, key = account.key](const DavItem& file, HANDLE cancelled) {
            return ShareDavFile(*servers, key, file.url, false, cancelled);
        },
        [servers, key = account.key](const ShareResult& link) {
            RemoveDavLink(*servers, key, link.shareId);
        },
        [servers, key = account.key, server = settings.root.origin](HWND owner) {
            return AskForDavPassword(servers, key, WrongLoginSentence(server), owner);
        }};
}

std::vector<DavPickAccount> PickableAccounts(const std::shared_ptr<DavServers>& servers) {
    std::vector<DavPickAccount> accounts;
    for (const StorageAccount& account : servers->Book().Accounts(kWebDavId)) {
        const auto settings = ReadDavAccount(servers->Book(), account.key);
        if (settings) accounts.push_back(PickableAccount(servers, account, *settings));
    }
    return accounts;
}

} // namespace

WebDav::WebDav(AccountBook book, const DavPatience& patience)
    : servers_(std::make_shared<DavServers>(std::move(book), patience)) {}

std::uint32_t WebDav::Id() const noexcept { return kWebDavId; }

std::wstring WebDav::DisplayName() const { return OwnText(OB_TEXT_DAV_NAME_OF_PROVIDER); }

std::wstring WebDav::ShortDescription() const { return DisplayName(); }

UINT WebDav::IconId() const noexcept { return OB_DAV_ICON; }

bool WebDav::Has(ProviderCapability capability) const noexcept {
    return capability == ProviderCapability::OpenPicker ||
           capability == ProviderCapability::FreeSpace || capability == ProviderCapability::Folders;
}

std::optional<StorageAccount> WebDav::LogIn(const std::wstring& key, HWND owner) {
    if (!ReadDavAccount(Book(), key)) return LogInToDav(servers_, owner);
    if (!AskForDavPassword(servers_, key, ReasonForLogin(*servers_, key), owner)) return {};
    return Book().Account(kWebDavId, key);
}

bool WebDav::IsLoggedIn(const std::wstring& key) const {
    return servers_->UsableAccessTo(key).has_value();
}

void WebDav::LogOut(const std::wstring& key, HWND) { RemoveDavAccount(Book(), key); }

void WebDav::Manage(const std::wstring& key, HWND owner) {
    ManageDavAccount(servers_, key, true, owner);
}

std::optional<AccountSpace> WebDav::Space(const std::wstring& key, HANDLE ended) const {
    const auto access = servers_->UsableAccessTo(key);
    if (!access) return {};
    const DavClient client(servers_->Session(), access->login, ended, kNoPatience);
    DavError failure;
    const auto space = DavSpace(client, access->root, &failure);
    if (!space) NoteRefusal(*servers_, key, *access, failure);
    return space;
}

// Servers don't report it.
std::optional<std::uint64_t> WebDav::MaxFileSize(const std::wstring&) const { return {}; }

std::wstring WebDav::RootFolder(const std::wstring&) const { return {}; }

WebDav::AccountUpload::AccountUpload(DavServers& servers, const std::wstring& key)
    : upload(servers.Session(), servers.Patience(),
             DavUpload::Notes{PartNotes(servers.Book()), key}) {}

// One for an account, kept for the run: the second run of a clash only moves what is there.
std::shared_ptr<WebDav::AccountUpload> WebDav::UploadOf(const std::wstring& key) {
    const std::lock_guard guard(uploadsLock_);
    auto& upload = uploads_[key];
    if (!upload) upload = std::make_shared<AccountUpload>(*servers_, key);
    return upload;
}

UploadResult WebDav::Upload(const std::wstring& key, const UploadFile& file,
                            UploadProgress& progress) {
    const auto kept = UploadOf(key);
    const std::unique_lock turn(kept->turn, std::try_to_lock);
    LinkedUpload upload(servers_, key, file, progress);
    if (turn) return upload.Run(kept->upload);
    // An upload of another window runs.
    AccountUpload own(*servers_, key);
    return upload.Run(own.upload);
}

ShareResult WebDav::Share(const std::wstring& key, const StoredFile& file, HANDLE ended) {
    const auto url = ParseHttpUrl(ToUtf8(file.path));
    if (!url) return {};
    return ShareDavFile(*servers_, key, *url, true, ended);
}

bool WebDav::SetExpiry(const std::wstring& key, const std::wstring& shareId, std::int32_t days,
                       HANDLE ended) {
    return EndDavLink(*servers_, key, shareId, days, ended);
}

DeletionEnd WebDav::Delete(const std::wstring& key, const StoredFile& file, HANDLE ended) {
    return RemoveBy(*servers_, key, file.path, ended,
                    [&](const DavClient& client, const HttpUrl& root, DavError* failure) {
                        return DeleteDavFile(client, root, file, failure);
                    });
}

DeletionEnd WebDav::RemovePart(const std::wstring& key, const std::wstring& path, HANDLE ended) {
    return RemoveBy(*servers_, key, path, ended,
                    [&](const DavClient& client, const HttpUrl& root, DavError* failure) {
                        return RemoveDavPart(client, root, path, failure);
                    });
}

PickResult WebDav::Pick(const std::wstring& preferred, HWND owner) {
    auto accounts = PickableAccounts(servers_);
    if (accounts.empty()) {
        if (!LogIn({}, owner)) return {};
        accounts = PickableAccounts(servers_);
    }
    if (accounts.empty()) return {{}, OwnText(OB_TEXT_PICK_FAILED)};
    // The newest account, unless the preferred one is among them.
    std::size_t first = accounts.size() - 1;
    for (std::size_t index = 0; index < accounts.size(); ++index) {
        if (accounts[index].account.key == preferred) first = index;
    }
    return PickFromServers(accounts, first, DisplayName(), owner);
}

} // namespace providers
