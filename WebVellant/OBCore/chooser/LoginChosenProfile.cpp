#include "OBCore/chooser/LoginChosenProfile.h"

#include "OBCore/chooser/AccountCache.h"
#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ProviderLibrary.h"

using obcontract::CloudProvider;
using obcontract::ProviderKind;
using obcontract::ProviderManagerHandle;
using obcontract::ProviderProfile;

namespace obcore {
namespace {

constexpr char kSource[] = "OBCore\\OBSelectDefaultCloudDialog";
constexpr int kLoginLine = 2;

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
