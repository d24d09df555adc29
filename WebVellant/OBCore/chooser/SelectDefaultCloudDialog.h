// The dialog in which the user chooses the storage provider of a run.
#pragma once

#include <windows.h>

#include "OBCore/options/OBAttachJob.h"

namespace obcore {

// Shows the dialog (resource 114) owned by `owner`, with the providers and accounts of the job's
// manager, and waits. True when the user chose an account, which is logged in then; it is in
// job.SelectedStorageProvider, and is the manager's default where the user wants that. False leaves
// that record as it was: the user cancelled, or the dialog can't be shown. On the picker's dialog
// thread; ResourceModule() must be bound.
bool ShowSelectDefaultCloudDialog(HWND owner, OBAttachJob& job);

} // namespace obcore
