// The storage provider whose accounts are folders of WebDAV servers.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "services/providers/storage/StorageProvider.h"
#include "services/providers/webdav/DavLinks.h"
#include "services/providers/webdav/DavServers.h"

namespace providers {

class WebDav final : public StorageProvider {
public:
    explicit WebDav(AccountBook book, const DavPatience& patience = {});

    std::uint32_t Id() const noexcept override;
    std::wstring DisplayName() const override;
    std::wstring ShortDescription() const override;
    UINT IconId() const noexcept override;
    bool Has(obcontract::ProviderCapability capability) const noexcept override;

    std::optional<StorageAccount> LogIn(const std::wstring& key, HWND owner) override;
    bool IsLoggedIn(const std::wstring& key) const override;
    void LogOut(const std::wstring& key, HWND owner) override;
    void Manage(const std::wstring& key, HWND owner) override;

    std::optional<AccountSpace> Space(const std::wstring& key, HANDLE ended) const override;
    std::optional<std::uint64_t> MaxFileSize(const std::wstring& key) const override;
    std::wstring RootFolder(const std::wstring& key) const override;

    // Before a byte is sent, the server is asked how it makes links: where there is no way to link
    // the file, the user is asked for one, and nothing is uploaded without it.
    UploadResult Upload(const std::wstring& key, const UploadFile& file,
                        UploadProgress& progress) override;
    ShareResult Share(const std::wstring& key, const StoredFile& file, HANDLE ended) override;
    bool SetExpiry(const std::wstring& key, const std::wstring& shareId, std::int32_t days,
                   HANDLE ended) override;
    DeletionEnd Delete(const std::wstring& key, const StoredFile& file, HANDLE ended) override;
    DeletionEnd RemovePart(const std::wstring& key, const std::wstring& path,
                           HANDLE ended) override;

    PickResult Pick(const std::wstring& preferred, HWND owner) override;

private:
    const AccountBook& Book() const noexcept { return servers_->Book(); }
    // What uploads of an account go through, one at a time.
    struct AccountUpload {
        AccountUpload(DavServers& servers, const std::wstring& key);
        std::mutex turn;
        DavUpload upload;
    };
    std::shared_ptr<AccountUpload> UploadOf(const std::wstring& key);

    std::shared_ptr<DavServers> servers_; // shared with threads that ask a server
    std::mutex uploadsLock_;
    std::map<std::wstring, std::shared_ptr<AccountUpload>> uploads_; // by account
};

} // namespace providers
