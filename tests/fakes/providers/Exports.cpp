// Life of the manager, storage providers, accounts and lists.
#include <windows.h>

#include <cstdint>
#include <cwchar>
#include <iterator>

#include "tests/fakes/providers/FakeManager.h"
#include "tests/fakes/providers/FakeProvider.h"
#include "tests/fakes/providers/Script.h"
#include "tests/fakes/providers/Support.h"

using namespace obcontract; // the contract's tables name its types bare
using namespace fakes;

namespace {

// The sizes that the four indices of GetBitmap mean.
constexpr int kBitmapSizes[] = {16, 20, 24, 32};

constexpr std::size_t kAccountKeyCapacity = std::size(ProviderProfile{}.accountKey);
constexpr std::size_t kAccountLabelCapacity = std::size(ProviderProfile{}.accountLabel);

ProviderProfile ProfileOf(const std::wstring& script) {
    const auto fields = Split(script, L'|');
    ProviderProfile profile{};
    if (fields.size() != 3) return profile;
    profile.providerId = static_cast<std::uint32_t>(std::wcstoul(fields[0].c_str(), nullptr, 10));
    FillText(profile.accountLabel, kAccountLabelCapacity, fields[1]);
    FillText(profile.accountKey, kAccountKeyCapacity, fields[2]);
    return profile;
}

// The account of a picked item: after its name and link come a provider's id and an account key,
// where the script has them.
ProviderProfile AccountOf(const std::vector<std::wstring>& fields, std::uint32_t providerId) {
    ProviderProfile account{};
    account.providerId = providerId;
    if (fields.size() > 2) {
        account.providerId = static_cast<std::uint32_t>(NumberAt(fields[2], 0, 0));
    }
    if (fields.size() > 3) FillText(account.accountKey, kAccountKeyCapacity, fields[3]);
    return account;
}

} // namespace

extern "C" {

ProviderManagerHandle CreateObExtensionsManager() {
    Record(L"CreateObExtensionsManager");
    const auto guard = LockManagers();
    return ScriptedCount(L"CreateObExtensionsManager", 1) != 0 ? NewManager() : nullptr;
}

void Init(ProviderManagerHandle manager, std::int64_t hive, const wchar_t* key) {
    Record(L"Init", manager, hive, key);
    const auto guard = LockManagers();
    if (IsLive(manager)) manager->initialised = true;
}

void Deinit(ProviderManagerHandle manager) {
    Record(L"Deinit", manager);
    const auto guard = LockManagers();
    if (IsLive(manager)) manager->initialised = false;
}

void DeleteObExtensionsManager(ProviderManagerHandle manager) {
    Record(L"DeleteObExtensionsManager", manager);
    const auto guard = LockManagers();
    DropManager(manager);
}

void EnumProvidersReset(ProviderManagerHandle manager) {
    Record(L"EnumProvidersReset", manager);
    if (IsLive(manager)) manager->cursor = 0;
}

CloudProvider* EnumStorageProviders(ProviderManagerHandle manager) {
    Record(L"EnumStorageProviders", manager);
    if (!IsReady(manager)) return nullptr;
    const auto ids = ScriptedProviders();
    return manager->cursor < ids.size() ? ProviderOfId(ids[manager->cursor++]) : nullptr;
}

CloudProvider* GetProviderInstance(ProviderManagerHandle manager, std::uint32_t providerId,
                                   ProviderKind kind) {
    Record(L"GetProviderInstance", manager, providerId, kind);
    if (!IsReady(manager) || kind != ProviderKind::Storage) return nullptr;
    switch (ScriptedCount(L"GetProviderInstance." + std::to_wstring(providerId), 1)) {
    case 0:
        return nullptr;
    case 2:
        return &ProviderBesideTheList(providerId);
    default:
        return ProviderOfId(providerId);
    }
}

void GetDefaultStorageProvider(ProviderManagerHandle manager, ProviderProfile* profile) {
    Record(L"GetDefaultStorageProvider", manager);
    if (!profile) return;
    *profile = {};
    if (!IsReady(manager)) return;
    const auto scripted = ScriptedAnswer(L"GetDefaultStorageProvider");
    *profile = scripted ? ProfileOf(*scripted) : manager->defaultProfile;
}

Bool SetDefaultStorageProvider(ProviderManagerHandle manager, const ProviderProfile* profile) {
    Record(L"SetDefaultStorageProvider", manager, profile);
    if (!IsReady(manager) || !profile) return 0;
    if (ScriptedCount(L"SetDefaultStorageProvider", 1) == 0) return 0;
    manager->defaultProfile = *profile;
    return 1;
}

Bool IsProviderSupport(ProviderManagerHandle manager, std::uint32_t providerId, ProviderKind kind) {
    Record(L"IsProviderSupport", manager, providerId, kind);
    return IsReady(manager) && IsScriptedAsSupported(providerId, kind);
}

Bool Login2(ProviderManagerHandle manager, CloudProvider* provider, wchar_t* accountKey,
            wchar_t* accountLabel, HWND owner) {
    Record(L"Login2", manager, provider, accountKey, accountLabel, owner);
    if (!IsReady(manager) || !provider || ScriptedCount(L"Login2", 0) == 0) return 0;
    if (const auto key = ScriptedAnswer(L"Login2.accountKey")) {
        FillText(accountKey, kAccountKeyCapacity, *key);
    }
    if (const auto label = ScriptedAnswer(L"Login2.accountLabel")) {
        FillText(accountLabel, kAccountLabelCapacity, *label);
    }
    return 1;
}

void Logout2(ProviderManagerHandle manager, CloudProvider* provider, const wchar_t* accountKey,
             HWND owner) {
    Record(L"Logout2", manager, provider, accountKey, owner);
}

Bool IsAuthorized2(ProviderManagerHandle manager, CloudProvider* provider,
                   const wchar_t* accountKey, HWND owner) {
    Record(L"IsAuthorized2", manager, provider, accountKey, owner);
    if (!IsReady(manager) || !provider) return 0;
    const std::wstring ofAccount =
        std::wstring(L"IsAuthorized2.") + (accountKey ? accountKey : L"");
    return ScriptedCount(ofAccount, ScriptedCount(L"IsAuthorized2", 0)) != 0;
}

void GetShortDescription(CloudProvider* provider, std::uint32_t one, wchar_t* buffer,
                         std::uint32_t* capacity) {
    Record(L"GetShortDescription", provider, one, capacity ? *capacity : 0);
    const FakeProvider* fake = FindProvider(provider);
    if (!fake) return FillText(buffer, capacity ? *capacity : 0, {});
    const std::wstring call = fake->Key(L"GetShortDescription");
    FillTextOf(call, buffer, capacity ? *capacity : 0, ScriptedText(call));
}

HBITMAP GetBitmap(CloudProvider* provider, std::uint32_t one, std::uint32_t sizeIndex) {
    Record(L"GetBitmap", provider, one, sizeIndex);
    const FakeProvider* fake = FindProvider(provider);
    if (!fake || sizeIndex >= std::size(kBitmapSizes)) return nullptr;
    if (ScriptedCount(fake->Key(L"GetBitmap"), 0) == 0) return nullptr;
    const int size = kBitmapSizes[sizeIndex];
    return CreateBitmap(size, size, 1, 32, nullptr);
}

void GetLastErrorOfProvider(CloudProvider* provider, const wchar_t* accountKey,
                            const wchar_t* fileName, wchar_t* buffer, std::uint64_t* capacity) {
    Record(L"GetLastErrorOfProvider", provider, accountKey, fileName, capacity ? *capacity : 0);
    const FakeProvider* fake = FindProvider(provider);
    std::wstring text;
    if (fake && fake->lastError != 0) text = L"error " + std::to_wstring(fake->lastError);
    FillTextOf(L"GetLastErrorOfProvider", buffer, capacity ? *capacity : 0,
               ScriptedText(L"GetLastErrorOfProvider", text));
}

std::int32_t GetLastErrorCodeOfProvider(ProviderManagerHandle manager, DownloadList* list,
                                        const wchar_t* emptyText, wchar_t* buffer,
                                        std::uint64_t* capacity) {
    Record(L"GetLastErrorCodeOfProvider", manager, list, emptyText, capacity ? *capacity : 0);
    FillTextOf(L"GetLastErrorCodeOfProvider", buffer, capacity ? *capacity : 0,
               ScriptedText(L"GetLastErrorCodeOfProvider.text"));
    if (!IsReady(manager)) return 0;
    return static_cast<std::int32_t>(NumberAt(ScriptedText(L"GetLastErrorCodeOfProvider"), 0, 0));
}

Bool GetSharedListFromOpenPicker(ProviderManagerHandle manager, CloudProvider* provider,
                                 DownloadList* list, HWND owner) {
    Record(L"GetSharedListFromOpenPicker", manager, provider, list, owner);
    const auto picked = ScriptedAnswer(L"GetSharedListFromOpenPicker");
    const FakeProvider* fake = FindProvider(provider);
    if (!IsReady(manager) || !fake || !list || !picked) return 0;
    for (const std::wstring& text : Split(*picked, L';')) {
        const auto fields = Split(text, L'|');
        if (fields.size() < 2) continue;
        static_cast<FakeDownloadList*>(list)->items.push_back(
            MakeItem(AccountOf(fields, fake->id), fields[0], fields[1]));
    }
    return 1;
}

void DeleteDownloadList(CloudProvider* provider, DownloadList* list) {
    Record(L"DeleteDownloadList", provider, list);
    FakeProvider* fake = FindProvider(provider);
    if (fake && list) DropDownloadList(*fake, list);
}

Bool AddFileToDeletionSchedule(const CloudItem* item, std::int32_t days) {
    Record(L"AddFileToDeletionSchedule", item, days);
    if (!item) return 0;
    const std::wstring ofItem = std::wstring(L"AddFileToDeletionSchedule.") + item->name;
    return ScriptedCount(ofItem, ScriptedCount(L"AddFileToDeletionSchedule", 1)) != 0;
}

} // extern "C"

OB_PROVIDER_MANAGER_LIFE(FAKE_CHECK_ENTRY)
OB_PROVIDER_MANAGER_STORAGE(FAKE_CHECK_ENTRY)
OB_PROVIDER_MANAGER_LISTS(FAKE_CHECK_ENTRY)
