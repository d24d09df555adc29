#include "tests/unit/WebVellant/OBCore/cloud/FakeChooser.h"

#include <cwchar>

#include "OBCore/chooser/SelectDefaultCloudDialog.h"
#include "tests/fakes/Recording.h"

using obcontract::ProviderProfile;

namespace obtest {

std::vector<ProviderProfile> chooserAnswers;

ProviderProfile Profile(std::uint32_t id, const wchar_t* label, const wchar_t* key) {
    ProviderProfile profile{};
    profile.providerId = id;
    std::wcscpy(profile.accountLabel, label);
    std::wcscpy(profile.accountKey, key);
    return profile;
}

} // namespace obtest

namespace obcore {

bool ShowSelectDefaultCloudDialog(HWND owner, OBAttachJob& job) {
    obtest::RecordCall(L"ShowSelectDefaultCloudDialog(" + obtest::WindowText(owner) + L")");
    if (obtest::chooserAnswers.empty()) return false;
    const ProviderProfile chosen = obtest::chooserAnswers.front();
    obtest::chooserAnswers.erase(obtest::chooserAnswers.begin());
    if (chosen.providerId == obcontract::kNoProvider) return false;
    job.SelectedStorageProvider = chosen;
    return true;
}

} // namespace obcore
