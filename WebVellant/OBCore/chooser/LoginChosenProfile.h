// The login of the account that the user chose.
#pragma once

#include <windows.h>

#include "contracts/ProviderManager.h"

namespace obcore {

// The instance of a profile's provider. Null after the assertion box when the manager has none;
// `line` is the place that the box names.
obcontract::CloudProvider* ProviderOfProfile(obcontract::ProviderManagerHandle manager,
                                             const obcontract::ProviderProfile& profile, int line);

// Lets the manager log the account in; it shows its window above `window` and its own messages.
// Returns the manager's result. After a login the provider's newest account takes the place of
// `profile`, also when that was another account; it stays as it is when the provider reports none.
bool LoginChosenProfile(HWND window, obcontract::ProviderManagerHandle manager,
                        obcontract::ProviderProfile& profile);

} // namespace obcore
