#include "OBCore/options/OBAttachJob.h"

#include "OBCore/modules/ManagerCalls.h"
#include "OBCore/modules/ObTrace.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/options/BrowserImage.h"

namespace obcore {

// The manager comes last: nothing after it can throw and leave it without an owner.
OBAttachJob::OBAttachJob(const OBOptions& options, HWND parent)
    : OBOptions(options), ParentWindow(parent), BrowserImagePath(BrowserImage(parent)) {
    OwnedProviderManager = obcore::ProviderManager().CreateObExtensionsManager();
    ProviderManager = OwnedProviderManager;
}

OBAttachJob::~OBAttachJob() {
    if (!OwnedProviderManager) return;
    // After a cancel the worker of the transforms may still be in its last call, which Deinit has
    // ended. One that hangs keeps its manager until the process ends.
    if (AwaitManagerCalls(OwnedProviderManager)) {
        obcore::ProviderManager().DeleteObExtensionsManager(OwnedProviderManager);
    } else {
        ObTrace("A call of the provider manager doesn't end");
    }
}

OBAttachJob& OBAttachJob::operator=(const OBOptions& options) {
    OBOptions::operator=(options);
    return *this;
}

} // namespace obcore
