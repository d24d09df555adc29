// What the fake keeps for one manager handle.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "contracts/ProviderManager.h"

// The opaque record that the handle points to.
struct obcontract::ObExtensionsManager {
    bool initialised = false;
    std::size_t cursor = 0; // of the walk over the storage providers
    obcontract::ProviderProfile defaultProfile{};
    std::set<std::pair<std::uint32_t, obcontract::ProviderKind>> selected;
    std::wstring target;                // of the per-file transforms
    std::wstring answer;                // what the last GetProviderTarget pointed to
    std::vector<std::wstring> produced; // by the last list or final stage
};

namespace fakes {

obcontract::ProviderManagerHandle NewManager();
void DropManager(obcontract::ProviderManagerHandle manager);
bool IsLive(obcontract::ProviderManagerHandle manager);

// Whether the handle is live and initialised, so that its calls may answer yes.
bool IsReady(obcontract::ProviderManagerHandle manager);

} // namespace fakes
