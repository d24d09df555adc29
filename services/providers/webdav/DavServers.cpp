#include "services/providers/webdav/DavServers.h"

#include <utility>

#include "services/providers/http/Utf8.h"
#include "services/providers/storage/GuidText.h"
#include "services/providers/webdav/AccountPassword.h"

namespace providers {
namespace {

// Nobody else's, and without anything about the user or the file.
std::string NewLabel() { return "WebVellant " + ToUtf8(NewGuidText()); }

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
    if (auto known = Known(access.root)) return std::move(*known);
    auto found = ShareApi::Find(client, access.root);
    if (const auto* api = std::get_if<0>(&found)) {
        const std::lock_guard guard(lock_);
        shareApis_.insert_or_assign(HttpUrlText(access.root), *api);
    }
    return found;
}

std::optional<std::optional<ShareApi>> DavServers::Known(const HttpUrl& root) {
    const std::lock_guard guard(lock_);
    const auto known = shareApis_.find(HttpUrlText(root));
    if (known == shareApis_.end()) return {};
    return known->second;
}

void DavServers::Forget(const HttpUrl& root) {
    const std::lock_guard guard(lock_);
    shareApis_.erase(HttpUrlText(root));
}

DavServers::Share DavServers::ShareOf(const HttpUrl& file) {
    const std::lock_guard guard(lock_);
    Share& share = shares_[HttpUrlText(file)];
    if (share.label.empty()) share.label = NewLabel();
    return share;
}

void DavServers::SetPassword(const HttpUrl& file, const ObLib::Secret& password) {
    const std::lock_guard guard(lock_);
    shares_[HttpUrlText(file)].password = password;
}

void DavServers::ForgetShare(const HttpUrl& file) {
    const std::lock_guard guard(lock_);
    shares_.erase(HttpUrlText(file));
}

} // namespace providers
