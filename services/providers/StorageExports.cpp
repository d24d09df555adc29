// Storage providers, their accounts, and lists of files in the cloud.
#include <windows.h>

#include <iterator>

#include "services/providers/Answers.h"
#include "services/providers/storage/Deletions.h"
#include "services/providers/storage/ErrorSentence.h"
#include "services/providers/storage/IconBitmap.h"
#include "services/providers/storage/LocalDays.h"
#include "services/providers/storage/Logins.h"
#include "services/providers/storage/PickStep.h"
#include "services/providers/storage/RecordTexts.h"

using namespace obcontract; // the contract's tables name its types bare
using namespace providers;

namespace {

// The sizes that the four indices of GetBitmap mean.
constexpr int kBitmapSizes[] = {16, 20, 24, 32};

// Runs work on an instance of the manager that the caller got from it. False for any other pointer.
template <class Work>
Bool WithInstance(ProviderManagerHandle manager, CloudProvider* provider, Work work) noexcept {
    return WithSession(manager, [&](Session& session) {
        const auto instance = session.storage.Find(provider);
        return instance && work(session, *instance);
    });
}

// The account that the picker begins with: the default one, if it is the provider's.
std::wstring PreferredAccount(const Session& session, const StorageProvider& provider) {
    const ProviderProfile profile = session.accounts.DefaultProfile();
    return profile.providerId == provider.Id() ? profile.accountKey : std::wstring();
}

// Why the pick of the list failed; empty when it didn't, and after a cancel.
std::wstring FailureOf(ProviderManagerHandle manager, DownloadList* list) {
    std::wstring failure;
    WithSession(manager, [&](Session& session) {
        const auto own = session.storage.Find(list);
        if (own) failure = own->failure;
        return own != nullptr;
    });
    return failure;
}

} // namespace

extern "C" {

void EnumProvidersReset(ProviderManagerHandle manager) {
    InSession(manager, 0, [](Session& session) {
        session.catalogue.StartOver();
        return 0;
    });
}

CloudProvider* EnumStorageProviders(ProviderManagerHandle manager) {
    return InSession<CloudProvider*>(manager, nullptr,
                                     [](Session& session) { return session.catalogue.Next(); });
}

CloudProvider* GetProviderInstance(ProviderManagerHandle manager, std::uint32_t providerId,
                                   ProviderKind kind) {
    return InSession<CloudProvider*>(manager, nullptr, [&](Session& session) {
        return session.catalogue.Instance(providerId, kind);
    });
}

void GetDefaultStorageProvider(ProviderManagerHandle manager, ProviderProfile* profile) {
    if (!profile) return;
    *profile = InSession(manager, ProviderProfile{},
                         [](Session& session) { return session.accounts.DefaultProfile(); });
}

Bool SetDefaultStorageProvider(ProviderManagerHandle manager, const ProviderProfile* profile) {
    if (!profile) return false;
    return InSession<Bool>(manager, false, [profile](Session& session) {
        return session.accounts.SaveDefaultProfile(*profile);
    });
}

Bool IsProviderSupport(ProviderManagerHandle manager, std::uint32_t providerId, ProviderKind kind) {
    return InSession<Bool>(manager, false, [&](Session& session) {
        return session.catalogue.Contains(providerId, kind);
    });
}

Bool Login2(ProviderManagerHandle manager, CloudProvider* provider, wchar_t* accountKey,
            wchar_t* accountLabel, HWND owner) {
    return WithInstance(manager, provider, [&](Session&, ProviderInstance& instance) {
        return LogIn(instance, accountKey, accountLabel, owner);
    });
}

void Logout2(ProviderManagerHandle manager, CloudProvider* provider, const wchar_t* accountKey,
             HWND owner) {
    WithInstance(manager, provider, [&](Session&, ProviderInstance& instance) {
        LogOut(instance, accountKey, owner);
        return true;
    });
}

// Asks nobody anything, with a window or without: the state is known.
Bool IsAuthorized2(ProviderManagerHandle manager, CloudProvider* provider,
                   const wchar_t* accountKey, HWND) {
    return WithInstance(manager, provider, [&](Session&, ProviderInstance& instance) {
        return IsLoggedIn(instance, accountKey);
    });
}

void GetShortDescription(CloudProvider* provider, std::uint32_t, wchar_t* buffer,
                         std::uint32_t* capacity) {
    ClearText(buffer, capacity);
    if (!capacity) return;
    ObLib::RanGuarded([&] {
        const auto instance = StorageHalf::FindAny(provider);
        if (instance) CopyCut(instance->Provider().ShortDescription(), buffer, *capacity);
    });
}

HBITMAP GetBitmap(CloudProvider* provider, std::uint32_t, std::uint32_t sizeIndex) {
    if (sizeIndex >= std::size(kBitmapSizes)) return nullptr;
    return ObLib::Guarded<HBITMAP>(nullptr, [&]() -> HBITMAP {
        const auto instance = StorageHalf::FindAny(provider);
        if (!instance) return nullptr;
        return BitmapOfIcon(instance->Provider().IconId(), kBitmapSizes[sizeIndex]).Release();
    });
}

void GetLastErrorOfProvider(CloudProvider* provider, const wchar_t* accountKey,
                            const wchar_t* fileName, wchar_t* buffer, std::uint64_t* capacity) {
    ClearText(buffer, capacity);
    if (!capacity) return;
    ObLib::RanGuarded([&] {
        const auto instance = StorageHalf::FindAny(provider);
        const auto key = AccountKeyIn(accountKey);
        if (!instance || !key) return;
        CopyCut(
            ErrorSentence(*instance->Run(), instance->Provider(), *key, fileName ? fileName : L""),
            buffer, *capacity);
    });
}

// 0: there is no text to show.
std::int32_t GetLastErrorCodeOfProvider(ProviderManagerHandle manager, DownloadList* list,
                                        const wchar_t*, wchar_t* buffer, std::uint64_t* capacity) {
    ClearText(buffer, capacity);
    if (!capacity) return 0;
    return ObLib::Guarded<std::int32_t>(0, [&] {
        const std::wstring failure = FailureOf(manager, list);
        CopyCut(failure, buffer, *capacity);
        return failure.empty() ? 0 : 1;
    });
}

Bool GetSharedListFromOpenPicker(ProviderManagerHandle manager, CloudProvider* provider,
                                 DownloadList* list, HWND owner) {
    return WithInstance(manager, provider, [&](Session& session, ProviderInstance& instance) {
        const auto own = instance.Find(list);
        StorageProvider& ownProvider = instance.Provider();
        return own && PickFiles(ownProvider, PreferredAccount(session, ownProvider), *own, owner);
    });
}

void DeleteDownloadList(CloudProvider* provider, DownloadList* list) {
    ObLib::RanGuarded([&] {
        const auto instance = StorageHalf::FindAny(provider);
        if (instance) instance->Drop(list);
    });
}

// Names no manager: the one whose session began last has the run.
Bool AddFileToDeletionSchedule(const CloudItem* item, std::int32_t days) {
    if (!item) return false;
    return ObLib::Guarded<Bool>(false, [&] {
        const auto run = StorageHalf::Latest();
        return run && ScheduleDeletion(run, *item, days, TimeNow());
    });
}

} // extern "C"

OB_PROVIDER_MANAGER_STORAGE(PROVIDERS_CHECK_ENTRY)
OB_PROVIDER_MANAGER_LISTS(PROVIDERS_CHECK_ENTRY)
