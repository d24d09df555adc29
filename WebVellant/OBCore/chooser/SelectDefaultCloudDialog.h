// The dialog in which the user chooses the storage provider of a run.
#pragma once

#include <windows.h>

#include "OBCore/options/OBAttachJob.h"

namespace obcore {

// Shows the dialog (resource 114) owned by `owner`. True when the user chose a provider; the choice
// is then in job.SelectedStorageProvider. False leaves that record as it was.
bool ShowSelectDefaultCloudDialog(HWND owner, OBAttachJob& job);

} // namespace obcore
