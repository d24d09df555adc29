#include "OBCore/cloud/OpenPickerProvider.h"

#include <iterator>

#include "OBCore/modules/ProviderLibrary.h"

using obcontract::CloudProvider;
using obcontract::kNoProvider;
using obcontract::ProviderCapability;
using obcontract::ProviderKind;
using obcontract::ProviderManagerHandle;
using obcontract::ProviderProfile;
using obcore::slots::OnCloudProvider;

namespace obcore {
namespace {

bool CanServePicker(CloudProvider* provider) {
    return OnCloudProvider::HasCapability::Call(provider, ProviderKind::Storage,
                                                ProviderCapability::OpenPicker) != 0;
}

bool HasAccount(CloudProvider* provider) {
    ProviderProfile profiles[kAccountCapacity];
    return OnCloudProvider::GetAccountProfiles::Call(provider, profiles, kAccountCapacity) > 0;
}

// The default's instance; null when it can't serve the picker.
CloudProvider* DefaultForPicker(ProviderManagerHandle manager) {
    ProviderProfile profile{};
    ProviderManager().GetDefaultStorageProvider(manager, &profile);
    CloudProvider* provider =
        ProviderManager().GetProviderInstance(manager, profile.providerId, ProviderKind::Storage);
    const bool serves = profile.providerId != kNoProvider && provider && CanServePicker(provider);
    return serves ? provider : nullptr;
}

// The first provider that isn't offered for storing ends the walk: what comes after it in the
// manager's order isn't looked at.
CloudProvider* WalkForPicker(ProviderManagerHandle manager) {
    CloudProvider* fallback = nullptr;
    ProviderManager().EnumProvidersReset(manager);
    while (CloudProvider* provider = ProviderManager().EnumStorageProviders(manager)) {
        if (!IsOfferedForStoring(OnCloudProvider::GetProviderId::Call(provider))) return fallback;
        if (CanServePicker(provider) && HasAccount(provider)) return provider;
        if (!fallback) fallback = provider;
    }
    return fallback;
}

} // namespace

CloudProvider* ChooseOpenPickerProvider(ProviderManagerHandle manager) {
    CloudProvider* provider = DefaultForPicker(manager);
    return provider ? provider : WalkForPicker(manager);
}

} // namespace obcore
