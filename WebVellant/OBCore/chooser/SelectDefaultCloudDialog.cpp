#include "OBCore/chooser/SelectDefaultCloudDialog.h"

#include "OBCore/modules/ObTrace.h"

namespace obcore {

// This build has no chooser yet, and no provider to choose: the answer is that of a user who
// cancels, and the job's record stays as it is. The dialog takes the place of the trace.
bool ShowSelectDefaultCloudDialog(HWND owner, OBAttachJob& job) {
    ObTrace("ShowSelectDefaultCloudDialog: nothing to choose, owner %p, provider %u", owner,
            job.SelectedStorageProvider.providerId);
    return false;
}

} // namespace obcore
