// Life of the manager.
#include <windows.h>

#include "services/providers/Answers.h"
#include "services/providers/StorageProviders.h"

using namespace obcontract; // the contract's tables name its types bare
using namespace providers;

extern "C" {

ProviderManagerHandle CreateObExtensionsManager() {
    return ObLib::Guarded<ProviderManagerHandle>(nullptr, [] { return new ObExtensionsManager; });
}

void Init(ProviderManagerHandle manager, std::int64_t hive, const wchar_t* key) {
    if (!manager) return;
    ObLib::RanGuarded([&] { manager->Begin(hive, key, &MakeStorageParts); });
}

void Deinit(ProviderManagerHandle manager) {
    if (manager) manager->End();
}

void DeleteObExtensionsManager(ProviderManagerHandle manager) { delete manager; }

} // extern "C"

OB_PROVIDER_MANAGER_LIFE(PROVIDERS_CHECK_ENTRY)
