#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/options/OBOptions.h"

using obcontract::ProviderManagerHandle;

namespace obcore {
namespace {

// Set by the first enumeration of the process and never cleared. Picker's dialog thread only.
bool storageProvidersEnumerated = false;

bool HasStorageProvider(ProviderManagerHandle manager) {
    obcore::ProviderManager().EnumProvidersReset(manager);
    return obcore::ProviderManager().EnumStorageProviders(manager) != nullptr;
}

} // namespace

bool OBOptions::CloudServicesUnavailable() {
    if (DisableCloudServices) return true;
    if (storageProvidersEnumerated) return false;
    // The failed check only shows its box: the manager is asked all the same.
    Check(ProviderManager != nullptr, "pvx_manager_ptr != NULL", "OBCore\\OBOptions", 731);
    storageProvidersEnumerated = true;
    DisableCloudServices = !HasStorageProvider(ProviderManager);
    return DisableCloudServices;
}

} // namespace obcore
