#include "services/providers/storage/PumpedCall.h"

#include <algorithm>

#include "services/providers/storage/OwnerWindow.h"
#include "services/providers/storage/UploadDialog.h"
#include "services/providers/worker/PumpingWait.h"

namespace providers {
namespace {

// With a window once the call takes longer, whose cancel button ends the wait. Nothing is shown
// when it can't be created.
Waited Await(HANDLE done, HANDLE ended, const CallWindow& window, DWORD limit) {
    const HWND owner = window.owner ? GetAncestor(window.owner, GA_ROOT) : nullptr;
    const KeptFocus focus;
    std::optional<UploadWindow> shown; // destroyed after the owner is enabled
    const DisabledOwner disabled(owner);
    {
        PumpingWait wait(ended, owner);
        const Waited waited = wait.Until(done, std::min(window.delay, limit));
        if (waited != Waited::TimedOut || limit <= window.delay) return waited;
    }
    shown.emplace(window.texts, window.fileName, owner);
    PumpingWait wait(ended, shown->Get() ? shown->Get() : owner);
    return wait.Until(done, limit - window.delay);
}

} // namespace

bool AwaitAndPump(HANDLE done, HANDLE ended, const CallWindow& window, DWORD limit) {
    if (window.owner && !IsWindow(window.owner)) return false;
    return Await(done, ended, window, limit) == Waited::Signalled;
}

} // namespace providers
