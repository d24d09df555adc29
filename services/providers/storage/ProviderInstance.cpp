#include "services/providers/storage/ProviderInstance.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "services/providers/storage/RecordTexts.h"
#include "services/providers/storage/ShareStep.h"
#include "services/providers/storage/SlotTable.h"
#include "services/providers/storage/UploadStep.h"

namespace providers {
namespace {

using namespace obcontract; // the contract's tables name its types bare

template <class List, class Given>
std::shared_ptr<List> FindIn(const std::vector<std::shared_ptr<List>>& lists, const Given* given) {
    const auto found = std::ranges::find_if(
        lists, [given](const auto& own) { return given && own.get() == given; });
    return found != lists.end() ? *found : nullptr;
}

template <class List, class Given>
void DropFrom(std::vector<std::shared_ptr<List>>& lists, const Given* given) {
    std::erase_if(lists, [given](const auto& own) { return own.get() == given; });
}

} // namespace

ProviderInstance::ProviderInstance(std::shared_ptr<StorageRun> run,
                                   std::shared_ptr<AccountSpaces> spaces, StorageProvider& provider)
    : CloudProvider{Table()}, run_(std::move(run)), spaces_(std::move(spaces)),
      provider_(provider) {}

void* const* ProviderInstance::Table() {
    using Own = ProviderInstance;
    static const auto filled = [] {
        auto table = UnlistedSlots<kCloudProviderSlotCount>();
        OB_PROVIDER_SLOTS(PROVIDERS_FILL_SLOT)
        return table;
    }();
    return filled.data();
}

std::shared_ptr<OwnDownloadList> ProviderInstance::Find(const DownloadList* list) const {
    return FindIn(downloads_, list);
}

std::shared_ptr<OwnUploadList> ProviderInstance::Find(const UploadList* list) const {
    return FindIn(uploads_, list);
}

void ProviderInstance::Drop(const DownloadList* list) { DropFrom(downloads_, list); }

StorageProvider& ProviderInstance::ProviderOf(const std::wstring& accountKey) const {
    StorageProvider* const owner = run_->ProviderOf(accountKey);
    return owner ? *owner : provider_;
}

std::uint32_t ProviderInstance::GetProviderId() { return provider_.Id(); }

void ProviderInstance::GetDisplayName(ProviderKind, wchar_t* buffer, std::uint32_t* capacity) {
    if (!capacity) return;
    CopyWhole({}, buffer, *capacity);
    CopyCut(provider_.DisplayName(), buffer, *capacity);
}

void ProviderInstance::SetLastProviderError(std::uint32_t code) {
    run_->errors.SetCode(lastAsked_, code);
}

void ProviderInstance::SetCallback(ObPVX::ObPvxCallback* callback) { callback_ = callback; }

void ProviderInstance::ClearCallback() { callback_ = nullptr; }

Bool ProviderInstance::HasCapability(ProviderKind kind, ProviderCapability mask) {
    return kind == ProviderKind::Storage && provider_.Has(mask);
}

DownloadList* ProviderInstance::CreateDownloadList() {
    return downloads_.emplace_back(std::make_shared<OwnDownloadList>()).get();
}

void ProviderInstance::DestroyDownloadList(DownloadList* list) { Drop(list); }

UploadList* ProviderInstance::CreateUploadList(const wchar_t* accountKey) {
    const auto key = AccountKeyIn(accountKey);
    if (!key) return nullptr;
    return uploads_.emplace_back(std::make_shared<OwnUploadList>(*key)).get();
}

void ProviderInstance::DestroyUploadList(UploadList* list) { DropFrom(uploads_, list); }

// True also when the space is unknown, which never blocks an upload.
Bool ProviderInstance::GetAccountSpace(const wchar_t* accountKey, std::int64_t* freeBytes,
                                       std::int64_t* totalBytes) {
    if (freeBytes) *freeBytes = SizeUnknown;
    if (totalBytes) *totalBytes = SizeUnknown;
    ObLib::RanGuarded([&] {
        lastAsked_ = AccountKeyIn(accountKey).value_or(L"");
        const AccountSpace space = spaces_->Of(lastAsked_);
        if (freeBytes) *freeBytes = space.freeBytes;
        if (totalBytes) *totalBytes = space.totalBytes;
    });
    return true;
}

// Zero would block every upload, so that what isn't known is the largest number.
std::uint64_t ProviderInstance::GetMaxFileSize(const wchar_t* accountKey) {
    constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();
    return ObLib::Guarded(kNoLimit, [&] {
        lastAsked_ = AccountKeyIn(accountKey).value_or(L"");
        return ProviderOf(lastAsked_).MaxFileSize(lastAsked_).value_or(kNoLimit);
    });
}

// A folder that doesn't fit is left out: a part of its path would be another folder.
void ProviderInstance::GetAccountRootFolder(const wchar_t* accountKey, wchar_t* buffer,
                                            std::uint32_t capacity) {
    CopyWhole({}, buffer, capacity);
    const auto key = AccountKeyIn(accountKey);
    if (key) CopyWhole(ProviderOf(*key).RootFolder(*key), buffer, capacity);
}

Bool ProviderInstance::RunUpload(UploadList* list, HWND owner, const wchar_t* title,
                                 const wchar_t* body, Bool, Bool, Bool, Bool, std::uint32_t,
                                 void*) {
    const auto kept = shared_from_this();
    const auto own = Find(list);
    if (!own) return false;
    run_->errors.SetSentence(own->accountKey, {}); // until the upload knows better
    if (!title || !body) return false;
    return UploadFiles(*run_, *own, callback_, {title, body}, owner);
}

Bool ProviderInstance::ShareItems(DownloadList* list) {
    const auto kept = shared_from_this();
    const auto own = Find(list);
    return own && ShareFiles(run_, *own);
}

Bool ProviderInstance::IsAccountLoggedIn(const wchar_t* accountKey) {
    const auto key = AccountKeyIn(accountKey);
    const StorageProvider* const owner = key ? run_->ProviderOf(*key) : nullptr;
    return owner && owner->IsLoggedIn(*key);
}

// The newest ones when there are more than fit; the newest is last.
std::int32_t ProviderInstance::GetAccountProfiles(ProviderProfile* profiles,
                                                  std::uint32_t capacity) {
    if (!profiles) return 0;
    const auto accounts = run_->Book().Accounts(provider_.Id());
    const std::size_t count = std::min<std::size_t>(accounts.size(), capacity);
    std::transform(accounts.end() - static_cast<std::ptrdiff_t>(count), accounts.end(), profiles,
                   [this](const auto& account) { return ProfileOf(provider_.Id(), account); });
    return static_cast<std::int32_t>(count);
}

void ProviderInstance::ManageAccount(HWND owner, const wchar_t* accountKey) {
    const auto kept = shared_from_this();
    const auto key = AccountKeyIn(accountKey);
    StorageProvider* const provider = key ? run_->ProviderOf(*key) : nullptr;
    if (provider) provider->Manage(*key, owner);
}

} // namespace providers
