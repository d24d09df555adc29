// Which storage provider serves the open picker of the cloud button.
#pragma once

#include "contracts/ProviderManager.h"

namespace obcore {

// The default provider if it can serve the picker, else the first one that can and has an account,
// else the first one of all, able or not. Null when there is nothing to offer: the cloud button is
// disabled then. Belongs to `manager`. Starts the manager's walk over the storage providers anew,
// so it isn't called during another walk. On the dialog's thread.
obcontract::CloudProvider* ChooseOpenPickerProvider(obcontract::ProviderManagerHandle manager);

} // namespace obcore
