// Deleting uploaded files when the user's days are over.
#pragma once

#include <cstdint>
#include <memory>

#include "contracts/ProviderManager.h"
#include "services/providers/storage/StorageRun.h"

namespace providers {

// Lets the file of this run be deleted at the end of the local day that is so many days after
// today, and its link end, where its server can. False for negative days, for a file that isn't of
// this run or isn't shared, for one whose version isn't known, and when it can't be written down.
// On the thread that owns the dialogs, whose messages are dispatched meanwhile.
bool ScheduleDeletion(const std::shared_ptr<StorageRun>& run, const obcontract::CloudItem& item,
                      std::int32_t days, std::uint64_t now);

// Deletes what is due, also of accounts that are logged out: each account on a thread of its own
// that nobody waits for and that ends with the session. A file that can't be reached ends the
// account's turn and stays for a later run, for a year at most; what has gone or changed is
// forgotten. A file of a provider that this build doesn't have stays. The same happens to what
// uploads of processes that were killed have left for a day; and what was written half, of accounts
// and deletions, is removed after a day.
void StartDeletions(const std::shared_ptr<StorageRun>& run, std::uint64_t now);

} // namespace providers
