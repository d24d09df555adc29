#include "OBCore/chooser/AccountCache.h"

#include <algorithm>

using obcontract::CloudProvider;
using obcontract::ProviderManagerHandle;
using obcontract::ProviderProfile;
using OnProvider = obcore::slots::OnCloudProvider;

namespace obcore {
namespace {

ProviderProfile WithoutAccount(std::uint32_t providerId) {
    ProviderProfile profile{};
    profile.providerId = providerId;
    return profile;
}

void AppendAccounts(AccountCache& cache, CloudProvider* provider) {
    const std::uint32_t id = OnProvider::GetProviderId::Call(provider);
    ProfileArray profiles{};
    const std::int32_t count = ReadAccountProfiles(provider, profiles);
    if (count < 0) return;
    auto& accounts = cache[static_cast<std::int32_t>(id)];
    if (count == 0) {
        accounts.push_back(WithoutAccount(id));
    } else {
        accounts.insert(accounts.end(), profiles.begin(), profiles.begin() + count);
    }
}

} // namespace

std::int32_t ReadAccountProfiles(CloudProvider* provider, ProfileArray& profiles) {
    const std::int32_t count =
        OnProvider::GetAccountProfiles::Call(provider, profiles.data(), kAccountCapacity);
    return std::min(count, static_cast<std::int32_t>(kAccountCapacity));
}

void TakeNewestAccount(CloudProvider* provider, ProviderProfile& profile) {
    ProfileArray profiles{};
    const std::int32_t count = ReadAccountProfiles(provider, profiles);
    if (count <= 0) return;
    const ProviderProfile& newest = profiles[static_cast<std::size_t>(count) - 1];
    if (newest.providerId != obcontract::kNoProvider) profile = newest;
}

void RefreshAccountCache(AccountCache& cache, ProviderManagerHandle manager) {
    ProviderManager().EnumProvidersReset(manager);
    while (CloudProvider* const provider = ProviderManager().EnumStorageProviders(manager)) {
        AppendAccounts(cache, provider);
    }
}

} // namespace obcore
