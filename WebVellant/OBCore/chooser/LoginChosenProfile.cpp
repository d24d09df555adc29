#include "OBCore/chooser/LoginChosenProfile.h"

#include "OBCore/chooser/AccountCache.h"
#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ProviderLibrary.h"

using obcontract::CloudProvider;
using obcontract::kNoProvider;
using obcontract::ProviderKind;
using obcontract::ProviderManagerHandle;
using obcontract::ProviderProfile;

namespace obcore {
namespace {

constexpr char kSource[] = "OBCore\\OBSelectDefaultCloudDialog";
constexpr int kLoginLine = 2;

// The chosen profile stays when the provider counts more accounts than it has filled in.
void TakeNewestAccount(CloudProvider* provider, ProviderProfile& profile) {
    ProfileArray profiles{};
    const std::int32_t count = ReadAccountProfiles(provider, profiles);
    if (count <= 0) return;
    const ProviderProfile& newest = profiles[static_cast<std::size_t>(count) - 1];
    if (newest.providerId != kNoProvider) profile = newest;
}

} // namespace

CloudProvider* ProviderOfProfile(ProviderManagerHandle manager, const ProviderProfile& profile,
                                 int line) {
    CloudProvider* const provider =
        ProviderManager().GetProviderInstance(manager, profile.providerId, ProviderKind::Storage);
    Check(provider != nullptr, "provider != NULL", kSource, line);
    return provider;
}

bool LoginChosenProfile(HWND window, ProviderManagerHandle manager, ProviderProfile& profile) {
    // The failed check only shows its box: the manager is asked all the same.
    CloudProvider* const provider = ProviderOfProfile(manager, profile, kLoginLine);
    if (!ProviderManager().Login2(manager, provider, profile.accountKey, profile.accountLabel,
                                  window)) {
        return false;
    }
    if (provider) TakeNewestAccount(provider, profile);
    return true;
}

} // namespace obcore
