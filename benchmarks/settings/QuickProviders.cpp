#include "benchmarks/settings/QuickProviders.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <iterator>

#include "OBCore/modules/ProviderLibrary.h"

using namespace obcontract; // the contract's tables name its types bare

namespace bench {
namespace {

constexpr std::uint32_t kFirstId = 101;
constexpr int kPictureSizes[] = {16, 20, 24, 32}; // pixels, by the size index of GetBitmap

struct QuickProvider : CloudProvider {
    int number = 0;
};

std::uint32_t GetProviderId(CloudProvider* provider) {
    return kFirstId + static_cast<std::uint32_t>(static_cast<QuickProvider*>(provider)->number);
}

std::int32_t GetAccountProfiles(CloudProvider* provider, ProviderProfile* profiles,
                                std::uint32_t capacity) {
    const int count = std::min(kAccountsOfEach, static_cast<int>(capacity));
    for (int account = 0; account < count; ++account) {
        ProviderProfile& profile = profiles[account];
        profile = {};
        profile.providerId = GetProviderId(provider);
        CopyLabel(static_cast<QuickProvider*>(provider)->number, account, profile.accountLabel);
        std::swprintf(profile.accountKey, std::size(profile.accountKey), L"key%d", account);
    }
    return count;
}

std::array<QuickProvider, kProviders>& AllProviders() {
    static std::array<void*, kCloudProviderSlotCount> table{};
    static std::array<QuickProvider, kProviders> providers{};
    if (table[obcore::slots::OnCloudProvider::GetProviderId::kNumber] != nullptr) return providers;
    using Slots = obcore::slots::OnCloudProvider;
    table[Slots::GetProviderId::kNumber] = reinterpret_cast<void*>(&GetProviderId);
    table[Slots::GetAccountProfiles::kNumber] = reinterpret_cast<void*>(&GetAccountProfiles);
    for (int number = 0; number < kProviders; ++number) {
        providers[static_cast<std::size_t>(number)].table = table.data();
        providers[static_cast<std::size_t>(number)].number = number;
    }
    return providers;
}

std::size_t next = 0; // in the walk

CloudProvider* NextProvider(ProviderManagerHandle) {
    return next < kProviders ? &AllProviders()[next++] : nullptr;
}

void GetShortDescription(CloudProvider* provider, std::uint32_t, wchar_t* buffer,
                         std::uint32_t* capacity) {
    std::swprintf(buffer, *capacity, L"Provider %d", static_cast<QuickProvider*>(provider)->number);
}

ProviderManagerEntries QuickEntries() {
    ProviderManagerEntries entries{};
    entries.EnumProvidersReset = [](ProviderManagerHandle) { next = 0; };
    entries.EnumStorageProviders = &NextProvider;
    entries.GetDefaultStorageProvider = [](ProviderManagerHandle, ProviderProfile* profile) {
        *profile = {};
    };
    entries.IsProviderSupport = [](ProviderManagerHandle, std::uint32_t, ProviderKind) -> Bool {
        return 1;
    };
    entries.IsAuthorized2 = [](ProviderManagerHandle, CloudProvider*, const wchar_t*,
                               HWND) -> Bool { return 1; };
    entries.GetShortDescription = &GetShortDescription;
    entries.GetBitmap = [](CloudProvider*, std::uint32_t, std::uint32_t sizeIndex) {
        return MakePicture(kPictureSizes[sizeIndex]);
    };
    return entries;
}

} // namespace

void CopyLabel(int provider, int account, wchar_t (&label)[51]) {
    std::swprintf(label, std::size(label), L"person%d@provider%d.example", account, provider);
}

HBITMAP MakePicture(int size) { return CreateBitmap(size, size, 1, 32, nullptr); }

} // namespace bench

// In place of the room's own: the linker takes these first.
namespace obcore {

bool LoadProviderManager() { return true; }

const ProviderManagerEntries& ProviderManager() noexcept {
    static const ProviderManagerEntries entries = bench::QuickEntries();
    return entries;
}

void FreeProviderManager() noexcept {}

} // namespace obcore
