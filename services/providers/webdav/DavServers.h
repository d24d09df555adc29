// What the threads of the WebDAV provider share: its accounts, the HTTP session, and what servers
// have reported about links in this run.
#pragma once

#include <windows.h>

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "services/providers/dav/ShareApi.h"
#include "services/providers/storage/AccountBook.h"
#include "services/providers/webdav/DavAccount.h"
#include "services/providers/webdav/DavUpload.h"

namespace providers {

// Owned by the provider and by each thread that asks a server, which may outlive the provider. All
// functions on any thread.
class DavServers {
public:
    explicit DavServers(AccountBook book, const DavPatience& patience = {});

    const AccountBook& Book() const noexcept { return book_; }
    const DavPatience& Patience() const noexcept { return patience_; }

    // Made at the first call, so that a process without such an account never loads the system's
    // HTTP client.
    const HttpSession& Session();

    // Nothing when there is no such account, or the store has no password of it.
    std::optional<DavAccess> AccessTo(const std::wstring& accountKey) const;

    // The interface through which the server of this folder makes links; nothing when it has none.
    // A server that has answered isn't asked again until Forget: not for this user.
    ShareOutcome<std::optional<ShareApi>> Shares(const DavClient& client, const DavAccess& access);
    // What the server has answered; nothing when it hasn't.
    std::optional<std::optional<ShareApi>> Known(const DavAccess& access);
    void Forget(const DavAccess& access);

    // What a link to this file is recognised by and protected with: the same each time that the
    // link is asked for, so that a share whose reply was lost is found again.
    struct Share {
        std::string label;
        ObLib::Secret password; // empty until SetPassword
    };
    Share ShareOf(const std::wstring& accountKey, const HttpUrl& file);
    void SetPassword(const std::wstring& accountKey, const HttpUrl& file,
                     const ObLib::Secret& password);
    // The next link to this file is another one.
    void ForgetShare(const std::wstring& accountKey, const HttpUrl& file);

    // Whether a server has refused the password that the account has now. It isn't tried again
    // without the user: servers lock an account after a few tries.
    bool IsRefused(const std::wstring& accountKey);
    void NoteRefused(const std::wstring& accountKey, const ObLib::Secret& password);
    // After a login with any password.
    void ForgetRefused(const std::wstring& accountKey);
    // As AccessTo; also nothing for a password that was refused.
    std::optional<DavAccess> UsableAccessTo(const std::wstring& accountKey);

private:
    AccountBook book_;
    DavPatience patience_;
    std::mutex lock_; // never kept during a request
    std::unique_ptr<HttpSession> session_;
    // At one address users have folders, rights and links of their own.
    std::map<std::string, std::optional<ShareApi>> shareApis_; // by user and folder
    std::map<std::string, Share> shares_;                      // by account and file
    std::map<std::wstring, ObLib::Secret> refused_;            // passwords, by account
};

} // namespace providers
