// A storage provider as the product reaches it: an object of the contract's slots.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "contracts/ProviderManager.h"
#include "services/providers/storage/AccountSpaces.h"
#include "services/providers/storage/CloudLists.h"
#include "services/providers/storage/StorageRun.h"

namespace providers {

// An account key may belong to another provider than this one: each operation on an account is the
// account's own provider's. Usable until Deinit; an operation that is running then ends soon and
// keeps the object until its end. On the thread that owns the dialogs.
class ProviderInstance : public obcontract::CloudProvider,
                         public std::enable_shared_from_this<ProviderInstance> {
public:
    // `provider` is one of the run's, whose instances share `spaces`.
    ProviderInstance(std::shared_ptr<StorageRun> run, std::shared_ptr<AccountSpaces> spaces,
                     StorageProvider& provider);

    StorageProvider& Provider() const noexcept { return provider_; }
    const std::shared_ptr<StorageRun>& Run() const noexcept { return run_; }
    AccountSpaces& Spaces() const noexcept { return *spaces_; }

    // The provider of an account, this one's when there is no such account.
    StorageProvider& ProviderOf(const std::wstring& accountKey) const;

    // A list of this instance; null for any other pointer. The list outlives its destruction by
    // the caller for as long as the result is kept.
    std::shared_ptr<OwnDownloadList> Find(const obcontract::DownloadList* list) const;
    std::shared_ptr<OwnUploadList> Find(const obcontract::UploadList* list) const;

    // Takes a list back; any other pointer is left alone.
    void Drop(const obcontract::DownloadList* list);

private:
    using Bool = obcontract::Bool;

    static void* const* Table();

    // The slots, by the contract's names.
    std::uint32_t GetProviderId();
    void GetDisplayName(obcontract::ProviderKind kind, wchar_t* buffer, std::uint32_t* capacity);
    void SetLastProviderError(std::uint32_t code);
    void SetCallback(ObPVX::ObPvxCallback* callback);
    void ClearCallback();
    Bool HasCapability(obcontract::ProviderKind kind, obcontract::ProviderCapability mask);
    obcontract::DownloadList* CreateDownloadList();
    void DestroyDownloadList(obcontract::DownloadList* list);
    obcontract::UploadList* CreateUploadList(const wchar_t* accountKey);
    void DestroyUploadList(obcontract::UploadList* list);
    Bool GetAccountSpace(const wchar_t* accountKey, std::int64_t* freeBytes,
                         std::int64_t* totalBytes);
    std::uint64_t GetMaxFileSize(const wchar_t* accountKey);
    void GetAccountRootFolder(const wchar_t* accountKey, wchar_t* buffer, std::uint32_t capacity);
    Bool RunUpload(obcontract::UploadList* list, HWND owner, const wchar_t* title,
                   const wchar_t* body, Bool, Bool, Bool, Bool, std::uint32_t, void*);
    Bool ShareItems(obcontract::DownloadList* list);
    Bool IsAccountLoggedIn(const wchar_t* accountKey);
    std::int32_t GetAccountProfiles(obcontract::ProviderProfile* profiles, std::uint32_t capacity);
    void ManageAccount(HWND owner, const wchar_t* accountKey);

    std::shared_ptr<StorageRun> run_;
    std::shared_ptr<AccountSpaces> spaces_;
    StorageProvider& provider_;
    ObPVX::ObPvxCallback* callback_ = nullptr; // lent from SetCallback to ClearCallback
    std::wstring lastAsked_;                   // the account of the last question about a limit
    std::vector<std::shared_ptr<OwnDownloadList>> downloads_;
    std::vector<std::shared_ptr<OwnUploadList>> uploads_;
};

} // namespace providers
