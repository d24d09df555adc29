// Life of the manager, storage providers, accounts and lists.
#include <windows.h>

#include "services/providers/Answers.h"

using namespace obcontract; // the contract's tables name its types bare
using namespace providers;

extern "C" {

ProviderManagerHandle CreateObExtensionsManager() {
    return ObLib::Guarded<ProviderManagerHandle>(nullptr, [] { return new ObExtensionsManager; });
}

void Init(ProviderManagerHandle manager, std::int64_t hive, const wchar_t* key) {
    if (!manager) return;
    ObLib::RanGuarded([&] { manager->Begin(hive, key); });
}

void Deinit(ProviderManagerHandle manager) {
    if (manager) manager->End();
}

void DeleteObExtensionsManager(ProviderManagerHandle manager) { delete manager; }

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

// Without a provider nobody can be logged in, and there is no login window to show.
Bool Login2(ProviderManagerHandle, CloudProvider*, wchar_t*, wchar_t*, HWND) { return false; }

void Logout2(ProviderManagerHandle, CloudProvider*, const wchar_t*, HWND) {}

Bool IsAuthorized2(ProviderManagerHandle, CloudProvider*, const wchar_t*, HWND) { return false; }

void GetShortDescription(CloudProvider*, std::uint32_t, wchar_t* buffer, std::uint32_t* capacity) {
    ClearText(buffer, capacity);
}

HBITMAP GetBitmap(CloudProvider*, std::uint32_t, std::uint32_t) { return nullptr; }

void GetLastErrorOfProvider(CloudProvider*, const wchar_t*, const wchar_t*, wchar_t* buffer,
                            std::uint64_t* capacity) {
    ClearText(buffer, capacity);
}

// 0: there is no text to show.
std::int32_t GetLastErrorCodeOfProvider(ProviderManagerHandle, DownloadList*, const wchar_t*,
                                        wchar_t* buffer, std::uint64_t* capacity) {
    ClearText(buffer, capacity);
    return 0;
}

Bool GetSharedListFromOpenPicker(ProviderManagerHandle, CloudProvider*, DownloadList*, HWND) {
    return false;
}

// No list was ever given out, so none comes back.
void DeleteDownloadList(CloudProvider*, DownloadList*) {}

Bool AddFileToDeletionSchedule(const CloudItem*, std::int32_t) { return false; }

} // extern "C"

OB_PROVIDER_MANAGER_LIFE(PROVIDERS_CHECK_ENTRY)
OB_PROVIDER_MANAGER_STORAGE(PROVIDERS_CHECK_ENTRY)
OB_PROVIDER_MANAGER_LISTS(PROVIDERS_CHECK_ENTRY)
