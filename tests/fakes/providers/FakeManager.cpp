#include "tests/fakes/providers/FakeManager.h"

#include <algorithm>
#include <memory>

namespace fakes {
namespace {

std::mutex managersLock;
std::vector<std::unique_ptr<obcontract::ObExtensionsManager>> liveManagers;

auto Find(obcontract::ProviderManagerHandle manager) {
    return std::find_if(liveManagers.begin(), liveManagers.end(),
                        [manager](const auto& live) { return live.get() == manager; });
}

} // namespace

std::unique_lock<std::mutex> LockManagers() { return std::unique_lock(managersLock); }

obcontract::ProviderManagerHandle NewManager() {
    liveManagers.push_back(std::make_unique<obcontract::ObExtensionsManager>());
    return liveManagers.back().get();
}

void DropManager(obcontract::ProviderManagerHandle manager) {
    const auto found = Find(manager);
    if (found != liveManagers.end()) liveManagers.erase(found);
}

bool IsLive(obcontract::ProviderManagerHandle manager) {
    return Find(manager) != liveManagers.end();
}

bool IsReady(obcontract::ProviderManagerHandle manager) {
    return IsLive(manager) && manager->initialised;
}

std::size_t CountCall(obcontract::ProviderManagerHandle manager, const std::wstring& key) {
    return manager->calls[key]++;
}

} // namespace fakes
