// How a thread waits while the work process works, and when its call is to end.
#pragma once

#include <windows.h>

namespace providers {

enum class Waited { Signalled, TimedOut, Ended };

// A call of the manager waits on the thread that called. It ends when the manager's session does,
// and when the window that it was given no longer exists.
class CallWait {
public:
    // `ended` is an event that is set when the session ends, and outlives this object. `owner`
    // null: the call has no window.
    CallWait(HANDLE ended, HWND owner) noexcept : ended_(ended), owner_(owner) {}
    virtual ~CallWait() = default;
    CallWait(const CallWait&) = delete;
    CallWait& operator=(const CallWait&) = delete;

    // Waits until `event`, which doesn't reset itself, is set, at most `limit` milliseconds. Ended
    // comes first.
    Waited Until(HANDLE event, DWORD limit);

    // Whether the call is to end. Stays true.
    bool IsEnded();

    HWND Owner() const noexcept { return owner_; }

protected:
    // Waits until one of the two is set, at most `limit` milliseconds; spurious returns are
    // allowed.
    virtual void Sleep(const HANDLE (&events)[2], DWORD limit);
    // What ends this kind of call besides.
    virtual bool IsLeft() { return false; }

private:
    HANDLE ended_;
    HWND owner_;
    bool isEnded_ = false;
};

} // namespace providers
