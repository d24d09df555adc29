// What the fake keeps for one manager handle.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
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
    std::size_t buffers = 0;            // how many of them the caller was promised or gave room for
    std::map<std::wstring, std::size_t> calls; // how often each scripted list was read
};

namespace fakes {

// A manager is called from two threads: a call that was delayed may go on while another thread ends
// the manager. Every export of the transforms and of a manager's life takes this after its call is
// recorded.
[[nodiscard]] std::unique_lock<std::mutex> LockManagers();

obcontract::ProviderManagerHandle NewManager();
void DropManager(obcontract::ProviderManagerHandle manager);
bool IsLive(obcontract::ProviderManagerHandle manager);

// Whether the handle is live and initialised, so that its calls may answer yes.
bool IsReady(obcontract::ProviderManagerHandle manager);

// How often this manager was asked for `key` before. Counts this time.
std::size_t CountCall(obcontract::ProviderManagerHandle manager, const std::wstring& key);

} // namespace fakes
