#include "services/providers/storage/PumpedCall.h"

#include <atomic>
#include <new>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
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

} // namespace

bool RunAndPump(HANDLE ended, HWND owner, DWORD limit, std::function<void(HANDLE stop)> work) {
    const auto call = std::make_shared<Call>();
    const bool isBegun = RunDetached([call, work = std::move(work)] {
        call->isWhole = ObLib::RanGuarded([&] { work(call->stop.Get()); });
        SetEvent(call->done.Get());
    });
    if (!isBegun) return false;
    PumpingWait wait(ended, owner);
    if (wait.Until(call->done.Get(), limit) == Waited::Signalled) return call->isWhole;
    SetEvent(call->stop.Get());
    return false;
}

} // namespace providers
