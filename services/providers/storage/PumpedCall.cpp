#include "services/providers/storage/PumpedCall.h"

#include <algorithm>
#include <atomic>
#include <new>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/storage/OwnerWindow.h"
#include "services/providers/storage/UploadDialog.h"
#include "services/providers/worker/DetachedThread.h"
#include "services/providers/worker/PumpingWait.h"

namespace providers {
namespace {

ObLib::UniqueKernelHandle MakeEvent() {
    ObLib::UniqueKernelHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (!event) throw std::bad_alloc();
    return event;
}

// Shared by the thread that works and the one that waits.
struct Call {
    ObLib::UniqueKernelHandle stop = MakeEvent();
    ObLib::UniqueKernelHandle done = MakeEvent();
    std::atomic<bool> isWhole = false; // the work didn't throw
};

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

bool RunAndPump(HANDLE ended, const CallWindow& window, DWORD limit,
                std::function<void(HANDLE stop)> work) {
    if (window.owner && !IsWindow(window.owner)) return false;
    const auto call = std::make_shared<Call>();
    const bool isBegun = RunDetached([call, work = std::move(work)] {
        call->isWhole = ObLib::RanGuarded([&] { work(call->stop.Get()); });
        SetEvent(call->done.Get());
    });
    if (!isBegun) return false;
    if (Await(call->done.Get(), ended, window, limit) == Waited::Signalled) return call->isWhole;
    SetEvent(call->stop.Get());
    return false;
}

} // namespace providers
