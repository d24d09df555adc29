// The accounts of every storage provider, as a dialog's list of them needs it.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <vector>

#include "OBCore/modules/ProviderLibrary.h"
#include "contracts/ProviderManager.h"

namespace obcore {

// By provider id, in the order of the ids. A profile with an empty accountKey means that the
// provider has no account yet. Rows of a list view point into the vectors, so a cache is rebuilt
// only together with its list view. Used on the dialog's thread only.
using AccountCache = std::map<std::int32_t, std::vector<obcontract::ProviderProfile>>;

using ProfileArray = std::array<obcontract::ProviderProfile, kAccountCapacity>;

// Asks the provider for its accounts, the newest last. Returns the provider's own count, at most
// 16: that many profiles are filled; 0 or less means that it has no account.
std::int32_t ReadAccountProfiles(obcontract::CloudProvider* provider, ProfileArray& profiles);

// After a login: the provider's newest account takes the place of `profile`, which stays as it is
// when the provider counts none, or more than it has filled in.
void TakeNewestAccount(obcontract::CloudProvider* provider, obcontract::ProviderProfile& profile);

// Walks all providers of the manager, also those that aren't offered for storing, and fills a cache
// that was just emptied. A provider without an account gets one profile that has its id alone; one
// that reports a negative count gets none. No other walk over the providers may be under way.
// Throws std::bad_alloc.
void RefreshAccountCache(AccountCache& cache, obcontract::ProviderManagerHandle manager);

} // namespace obcore
