#include "services/providers/webdav/DavServers.h"

#include <algorithm>
#include <utility>

#include "services/providers/http/Utf8.h"
#include "services/providers/storage/GuidText.h"
#include "services/providers/webdav/AccountPassword.h"

namespace providers {
namespace {

// Nobody else's, and without anything about the user or the file.
std::string NewLabel() { return "WebVellant " + ToUtf8(NewGuidText()); }

// A user's name has no control characters.
std::string KeyOf(const std::wstring& user, const HttpUrl& url) {
    return ToUtf8(user) + '\n' + HttpUrlText(url);
}

std::string KeyOf(const DavAccess& access) { return KeyOf(access.login.user, access.root); }

} // namespace

DavServers::DavServers(AccountBook book, const DavPatience& patience)
    : book_(std::move(book)), patience_(patience) {}

const HttpSession& DavServers::Session() {
    const std::lock_guard guard(lock_);
    if (!session_) session_ = std::make_unique<HttpSession>();
    return *session_;
}

std::optional<DavAccess> DavServers::AccessTo(const std::wstring& accountKey) const {
    const auto settings = ReadDavAccount(book_, accountKey);
    if (!settings) return {};
    auto password = LoadAccountPassword(accountKey);
    if (!password) return {};
    return DavAccess{settings->root, {settings->root.origin, settings->user, std::move(*password)}};
}

ShareOutcome<std::optional<ShareApi>> DavServers::Shares(const DavClient& client,
                                                         const DavAccess& access) {
    if (auto known = Known(access)) return std::move(*known);
    auto found = ShareApi::Find(client, access.root);
    if (const auto* api = std::get_if<0>(&found)) {
        const std::lock_guard guard(lock_);
        shareApis_.insert_or_assign(KeyOf(access), *api);
    }
    return found;
}

std::optional<std::optional<ShareApi>> DavServers::Known(const DavAccess& access) {
    const std::lock_guard guard(lock_);
    const auto known = shareApis_.find(KeyOf(access));
    if (known == shareApis_.end()) return {};
    return known->second;
}

void DavServers::Forget(const DavAccess& access) {
    const std::lock_guard guard(lock_);
    shareApis_.erase(KeyOf(access));
}

DavServers::Share DavServers::ShareOf(const std::wstring& accountKey, const HttpUrl& file) {
    const std::lock_guard guard(lock_);
    Share& share = shares_[KeyOf(accountKey, file)];
    if (share.label.empty()) share.label = NewLabel();
    return share;
}

void DavServers::SetPassword(const std::wstring& accountKey, const HttpUrl& file,
                             const ObLib::Secret& password) {
    const std::lock_guard guard(lock_);
    shares_[KeyOf(accountKey, file)].password = password;
}

void DavServers::ForgetShare(const std::wstring& accountKey, const HttpUrl& file) {
    const std::lock_guard guard(lock_);
    shares_.erase(KeyOf(accountKey, file));
}

// Another process may have stored another password meanwhile.
bool DavServers::IsRefused(const std::wstring& accountKey) {
    const auto password = LoadAccountPassword(accountKey);
    const std::lock_guard guard(lock_);
    const auto refused = refused_.find(accountKey);
    return password && refused != refused_.end() &&
           std::ranges::equal(refused->second.Bytes(), password->Bytes());
}

void DavServers::NoteRefused(const std::wstring& accountKey, const ObLib::Secret& password) {
    const std::lock_guard guard(lock_);
    refused_.insert_or_assign(accountKey, password);
}

void DavServers::ForgetRefused(const std::wstring& accountKey) {
    const std::lock_guard guard(lock_);
    refused_.erase(accountKey);
}

std::optional<DavAccess> DavServers::UsableAccessTo(const std::wstring& accountKey) {
    return IsRefused(accountKey) ? std::nullopt : AccessTo(accountKey);
}

} // namespace providers
