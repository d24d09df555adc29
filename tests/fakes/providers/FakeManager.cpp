#include "tests/fakes/providers/FakeManager.h"

#include <algorithm>
#include <memory>

namespace standin {
namespace {

std::vector<std::unique_ptr<obcore::ObExtensionsManager>> liveManagers;

auto Find(obcore::ProviderManagerHandle manager) {
    return std::find_if(liveManagers.begin(), liveManagers.end(),
                        [manager](const auto& live) { return live.get() == manager; });
}

} // namespace

obcore::ProviderManagerHandle NewManager() {
    liveManagers.push_back(std::make_unique<obcore::ObExtensionsManager>());
    return liveManagers.back().get();
}

void DropManager(obcore::ProviderManagerHandle manager) {
    const auto found = Find(manager);
    if (found != liveManagers.end()) liveManagers.erase(found);
}

bool IsLive(obcore::ProviderManagerHandle manager) { return Find(manager) != liveManagers.end(); }

bool IsReady(obcore::ProviderManagerHandle manager) {
    return IsLive(manager) && manager->initialised;
}

} // namespace standin
