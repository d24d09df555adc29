// Waiting on the thread of a dialog, which stays alive meanwhile.
#pragma once

#include <windows.h>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/worker/CallWait.h"
#include "services/providers/worker/ThreadMessages.h"

namespace providers {

// Dispatches the thread's messages while it waits. The call ends also when the owner gets the
// command IDCANCEL, as from its button, Esc or its close box, and when the thread is to quit; the
// quit message is posted again at the end.
class PumpingWait : public CallWait {
public:
    // The owner, which may be null, belongs to the calling thread; one of another thread isn't
    // watched for its cancel button.
    PumpingWait(HANDLE ended, HWND owner);
    ~PumpingWait() override;

protected:
    void Sleep(const HANDLE (&events)[2], DWORD limit) override;
    bool IsLeft() override { return isLeft_; }

private:
    static LRESULT CALLBACK Watch(int code, WPARAM wParam, LPARAM lParam) noexcept;
    void Dispatch(MSG& message);

    PumpingWait* outer_;           // of the same thread; null for the outermost
    ObLib::UniqueWindowHook hook_; // of this thread; empty without an owner to watch
    bool isLeft_ = false;
    KeptQuit quit_;
};

} // namespace providers
