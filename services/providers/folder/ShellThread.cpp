#include "services/providers/folder/ShellThread.h"

#include <objbase.h>

#include <optional>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

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

// A dialog whose own dialog is open is disabled, and gets its turn after that one.
BOOL CALLBACK CancelDialog(HWND window, LPARAM) noexcept {
    if (IsWindowVisible(window) && IsWindowEnabled(window)) {
        PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
    }
    return TRUE;
}

void DispatchMessages(std::optional<int>& quitCode) {
    constexpr int kMostAtOnce = 50; // so that a flood doesn't hide the end of the thread
    MSG message;
    for (int count = 0; count < kMostAtOnce; ++count) {
        if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) return;
        if (message.message == WM_QUIT) {
            quitCode = static_cast<int>(message.wParam);
        } else {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

} // namespace

bool RunOnShellThread(HWND owner, const std::function<void()>& work) {
    ShellWork run{work};
    DWORD id = 0;
    const ObLib::UniqueKernelHandle thread(CreateThread(nullptr, 0, &Entry, &run, 0, &id));
    if (!thread) return false;
    const HANDLE handle = thread.Get();
    std::optional<int> quitCode;
    while (MsgWaitForMultipleObjectsEx(1, &handle, kTick, QS_ALLINPUT, MWMO_INPUTAVAILABLE) !=
           WAIT_OBJECT_0) {
        DispatchMessages(quitCode);
        if (quitCode || (owner && !IsWindow(owner))) EnumThreadWindows(id, &CancelDialog, 0);
    }
    if (quitCode) PostQuitMessage(*quitCode);
    return run.hasRun;
}

} // namespace providers
