// Texts that a storage provider gives: its name and what went wrong.
#pragma once

#include <string>

#include "OBCore/options/OBAttachJob.h"

namespace obcore {

// Puts the provider's name as shown into `name`. Without a provider the assertion box is shown, and
// `name` comes back empty.
void ProviderDisplayName(obcontract::CloudProvider* provider, std::wstring& name);

// Shows what the provider reports about the account and the job's result, as the provider words it,
// in a plain box owned by job.ParentWindow.
void ShowProviderError(const OBAttachJob& job, obcontract::CloudProvider* provider,
                       const wchar_t* accountKey);

} // namespace obcore
