// In the place of the chooser of cloud accounts: a user who chooses what the test has set.
#pragma once

#include <vector>

#include "contracts/ProviderManager.h"

namespace obtest {

// What the user does each time the chooser is shown, in order: a profile is chosen, an empty one is
// left when the user closes the chooser. Past the end the user closes it. Each showing is recorded
// as ShowSelectDefaultCloudDialog(OWNER).
extern std::vector<obcontract::ProviderProfile> chooserAnswers;

obcontract::ProviderProfile Profile(std::uint32_t id, const wchar_t* label, const wchar_t* key);

} // namespace obtest
