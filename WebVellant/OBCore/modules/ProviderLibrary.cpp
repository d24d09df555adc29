#include "OBCore/modules/ProviderLibrary.h"

#include <utility>

#include "OBCore/modules/BoundEntries.h"
#include "OBCore/modules/OwnModule.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

using namespace obcontract; // the contract's tables name its types bare

namespace obcore {
namespace {

// Freed by hand on process detach; see FreeProviderManager.
HMODULE boundManager = nullptr;
ProviderManagerEntries entries{};

bool FetchAllEntries(HMODULE manager) {
#define OB_FETCH_ENTRY(name, result, arguments)                                                    \
    if (!FetchEntry(manager, #name, entries.name)) return false;
    OB_PROVIDER_MANAGER_ENTRIES(OB_FETCH_ENTRY)
#undef OB_FETCH_ENTRY
    return true;
}

} // namespace

bool LoadProviderManager() {
    if (boundManager) return true;
    const auto path = PathBesideOwnModule(kProviderManagerFileName);
    if (path) boundManager = BindModule(*path, FetchAllEntries);
    return boundManager != nullptr;
}

const ProviderManagerEntries& ProviderManager() noexcept { return entries; }

void FreeProviderManager() noexcept {
    ObLib::UniqueModule ended(std::exchange(boundManager, nullptr));
}

} // namespace obcore
