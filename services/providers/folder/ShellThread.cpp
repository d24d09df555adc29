#include "services/providers/folder/ShellThread.h"

#include <objbase.h>

#include <array>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/worker/ThreadMessages.h"

namespace providers {
namespace {

constexpr DWORD kTick = 100; // milliseconds between two looks at the owner

struct ShellWork {
    const std::function<void()>& work;
    bool hasRun = false;
};

DWORD WINAPI Entry(void* parameter) noexcept {
    auto& run = *static_cast<ShellWork*>(parameter);
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {
        return 0;
    }
    const ObLib::ScopeExit uninitialise([] { CoUninitialize(); });
    run.hasRun = ObLib::RanGuarded(run.work);
    return 0;
}

// What the user does to the calling thread's windows.
bool IsInput(const MSG& message) {
    const UINT id = message.message;
    return (id >= WM_KEYFIRST && id <= WM_KEYLAST) || (id >= WM_MOUSEFIRST && id <= WM_MOUSELAST) ||
           (id >= WM_NCLBUTTONDOWN && id <= WM_NCXBUTTONDBLCLK) || id == WM_COMMAND ||
           id == WM_SYSCOMMAND || id == WM_CLOSE;
}

// The calling thread's messages while the work runs. The shell disables the owner only once its
// dialog is there, which takes a while; until then a second click would open a second dialog, or
// end the owner below the first one. To disable the owner from the beginning is no way out: it
// would still be disabled when the shell's dialog goes, and another program would come to the
// front.
class ShellWait {
public:
    explicit ShellWait(HWND owner) : owner_(owner) {}
    ~ShellWait() {
        for (std::size_t index = 0; index < lateCount_; ++index) {
            const MSG& late = late_[index];
            PostMessageW(late.hwnd, late.message, late.wParam, late.lParam);
        }
    }
    ShellWait(const ShellWait&) = delete;
    ShellWait& operator=(const ShellWait&) = delete;

    bool IsToEnd() const { return quit_.HasCome() || (owner_ && !IsWindow(owner_)); }

    void DispatchMessages() {
        HandlePendingMessages([this](const MSG& message) {
            NoteTheDialog();
            if (quit_.Takes(message)) return true;
            if (owner_ && IsInput(message)) {
                KeepIfLate(message);
            } else {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
            return true;
        });
        NoteTheDialog();
    }

private:
    void NoteTheDialog() { hasShown_ = hasShown_ || (owner_ && !IsWindowEnabled(owner_)); }
    // What comes after the shell's dialog waits for the end of the thread; the rest is dropped.
    void KeepIfLate(const MSG& message) {
        if (hasShown_ && IsWindowEnabled(owner_) && lateCount_ < late_.size()) {
            late_[lateCount_++] = message;
        }
    }

    HWND owner_;            // may be null
    bool hasShown_ = false; // the shell's dialog
    std::array<MSG, 16> late_ = {};
    std::size_t lateCount_ = 0;
    KeptQuit quit_;
};

} // namespace

bool RunOnShellThread(HWND owner, const std::function<void()>& work) {
    ShellWork run{work};
    DWORD id = 0;
    const ObLib::UniqueKernelHandle thread(CreateThread(nullptr, 0, &Entry, &run, 0, &id));
    if (!thread) return false;
    const HANDLE handle = thread.Get();
    ShellWait wait(owner);
    while (MsgWaitForMultipleObjectsEx(1, &handle, kTick, QS_ALLINPUT, MWMO_INPUTAVAILABLE) !=
           WAIT_OBJECT_0) {
        wait.DispatchMessages();
        if (wait.IsToEnd()) CancelDialogOf(id, nullptr);
    }
    return run.hasRun;
}

} // namespace providers
