#include "services/providers/worker/CallWait.h"

#include <algorithm>

#include "services/providers/worker/Event.h"

namespace providers {
namespace {

// A window sets no event when it is destroyed, so it is asked this often.
constexpr DWORD kOwnerInterval = 100; // milliseconds

} // namespace

bool CallWait::IsEnded() {
    isEnded_ = isEnded_ || IsSet(ended_) || (owner_ && !IsWindow(owner_)) || IsLeft();
    return isEnded_;
}

void CallWait::Sleep(const HANDLE (&events)[2], DWORD limit) {
    WaitForMultipleObjects(2, events, FALSE, limit);
}

Waited CallWait::Until(HANDLE event, DWORD limit) {
    const ULONGLONG start = GetTickCount64();
    for (;;) {
        if (IsEnded()) return Waited::Ended;
        if (IsSet(event)) return Waited::Signalled;
        const ULONGLONG passed = GetTickCount64() - start;
        if (passed >= limit) return Waited::TimedOut;
        Sleep({ended_, event}, std::min(kOwnerInterval, static_cast<DWORD>(limit - passed)));
    }
}

} // namespace providers
