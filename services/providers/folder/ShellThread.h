// Dialogs of the shell on a thread of their own.
#pragma once

#include <windows.h>

#include <functional>

namespace providers {

// Runs `work` on a thread of its own with COM, and dispatches the calling thread's messages until
// it ends; the owner, which belongs to the calling thread and may be null, is the owner of what
// `work` shows. A window hook of the calling thread doesn't see that. When the owner no longer
// exists or the calling thread is to quit, the dialogs of `work` are cancelled; the quit message is
// posted again. False when there is no thread or COM to be had. An exception ends the work.
bool RunOnShellThread(HWND owner, const std::function<void()>& work);

} // namespace providers
