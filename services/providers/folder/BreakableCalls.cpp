#include "services/providers/folder/BreakableCalls.h"

namespace providers {
namespace {

constexpr DWORD kInterval = 200; // milliseconds: a call may begin just after a cancel

ObLib::UniqueKernelHandle ThisThread() {
    ObLib::UniqueKernelHandle thread;
    const HANDLE process = GetCurrentProcess();
    DuplicateHandle(process, GetCurrentThread(), process, thread.Put(), 0, FALSE,
                    DUPLICATE_SAME_ACCESS);
    return thread;
}

} // namespace

BreakableCalls::BreakableCalls(HANDLE cancelled)
    : cancelled_(cancelled), caller_(ThisThread()),
      over_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    if (caller_ && over_) watcher_.Reset(CreateThread(nullptr, 0, &Entry, this, 0, nullptr));
}

BreakableCalls::~BreakableCalls() {
    if (!watcher_) return;
    SetEvent(over_.Get());
    WaitForSingleObject(watcher_.Get(), INFINITE);
}

DWORD WINAPI BreakableCalls::Entry(void* self) noexcept {
    static_cast<BreakableCalls*>(self)->Watch();
    return 0;
}

void BreakableCalls::Watch() noexcept {
    const HANDLE events[] = {over_.Get(), cancelled_};
    if (WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0) return;
    do {
        const std::lock_guard guard(lock_);
        if (isInside_) CancelSynchronousIo(caller_.Get());
    } while (WaitForSingleObject(over_.Get(), kInterval) == WAIT_TIMEOUT);
}

void BreakableCalls::SetInside(bool isInside) noexcept {
    const DWORD error = GetLastError();
    {
        const std::lock_guard guard(lock_);
        isInside_ = isInside;
    }
    SetLastError(error);
}

} // namespace providers
