// What the stand-in keeps for one manager handle.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "contracts/ProviderManager.h"

// The opaque record behind the handle.
struct obcore::ObExtensionsManager {
    bool initialised = false;
    std::size_t cursor = 0; // of the walk over the storage providers
    obcore::ProviderProfile defaultProfile{};
    std::set<std::pair<std::uint32_t, obcore::ProviderKind>> selected;
    std::wstring target;                // of the per-file transforms
    std::wstring answer;                // what the last GetProviderTarget pointed to
    std::vector<std::wstring> produced; // by the last list or final stage
};

namespace standin {

obcore::ProviderManagerHandle NewManager();
void DropManager(obcore::ProviderManagerHandle manager);
bool IsLive(obcore::ProviderManagerHandle manager);

// Whether the handle is live and initialised, so that its calls may answer yes.
bool IsReady(obcore::ProviderManagerHandle manager);

} // namespace standin
