// The storage provider whose accounts are folders: a share, or a folder that a sync client keeps.
#pragma once

#include <utility>

#include "services/providers/folder/FolderAccount.h"
#include "services/providers/storage/AccountBook.h"
#include "services/providers/storage/StorageProvider.h"

namespace providers {

class NetworkFolder final : public StorageProvider {
public:
    explicit NetworkFolder(AccountBook book) : book_(std::move(book)) {}

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
    std::optional<StorageAccount> Save(const std::wstring& key, FolderSettings settings) const;

    AccountBook book_;
};

} // namespace providers
