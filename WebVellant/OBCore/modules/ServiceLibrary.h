// The archive service, bound at run time: the call that binds it, and the table of its entries.
#pragma once

#include <windows.h>

#include "contracts/ArchiveService.h"

namespace obcore {

// Binds obofcsvc64.dll from this library's own folder, never from a search path. Idempotent and
// cheap after its first success. False when the path doesn't leave room for the file name, the file
// can't be loaded or an entry is missing; nothing stays loaded then, and the next call tries again.
// No lock: the first call of a process comes from its entry point, before any worker starts.
bool LoadArchiveService();

// The bound entries. Valid only after LoadArchiveService() has returned true in this process.
const obcontract::ArchiveServiceEntries& ArchiveService() noexcept;

// Process detach only: unloads the library if it is bound.
void FreeArchiveService() noexcept;

} // namespace obcore
