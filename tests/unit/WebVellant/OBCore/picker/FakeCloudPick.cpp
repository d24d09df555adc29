#include "tests/unit/WebVellant/OBCore/picker/FakeCloudPick.h"

#include "OBCore/cloud/OpenPickerProvider.h"
#include "OBCore/cloud/PickFromCloud.h"

namespace obtest {

std::function<bool(obcontract::ProviderManagerHandle)> FakeCloudPick::hasProvider;
std::function<bool(obcore::CloudButtonHook&, HWND)> FakeCloudPick::pick;
std::vector<FakeCloudPick::Call> FakeCloudPick::picks;

void FakeCloudPick::Reset() {
    hasProvider = nullptr;
    pick = nullptr;
    picks.clear();
}

} // namespace obtest

namespace obcore {

// Nobody calls the provider here, so any address serves.
obcontract::CloudProvider* ChooseOpenPickerProvider(obcontract::ProviderManagerHandle manager) {
    static char provider;
    const bool has =
        obtest::FakeCloudPick::hasProvider && obtest::FakeCloudPick::hasProvider(manager);
    return has ? reinterpret_cast<obcontract::CloudProvider*>(&provider) : nullptr;
}

bool PickFromCloud(CloudButtonHook& record, HWND dialog) {
    obtest::FakeCloudPick::picks.push_back({&record, dialog});
    return obtest::FakeCloudPick::pick && obtest::FakeCloudPick::pick(record, dialog);
}

} // namespace obcore
