// One run as the user sees it: with a progress window when it takes long, and a message when it
// fails.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>

#include "services/archive/zip/ZipJob.h"
#include "services/archive/zip/ZipResults.h"

namespace obarchive {

// Milliseconds of a clock that doesn't run backwards; called on the calling thread only.
using ProgressClock = std::uint64_t (*)();

// The work of a run. It is called once, on a thread of its own. Its progress callback returns false
// when the work is to end.
using ZipWork = std::function<ZipResult(const ProgressCallback&)>;

// Runs `work` and returns its result; Cancelled when the user has cancelled, whatever the work then
// returns. The window appears when the work has taken half a second, lives on the
// calling thread and stays alive while a read blocks. Messages of the calling thread are dispatched
// from then on, before that only those that other threads send. A WM_QUIT cancels and is put back.
// An exception of the work is a result; nothing is thrown but what memory shortage throws, and the
// work has ended by then.
ZipResult RunWithProgress(HWND owner, const ZipWork& work, ProgressClock clock = nullptr);

// Zips the job, shows the progress and a message after a failure. Nothing of a run that failed or
// was cancelled is left, also when the user cancelled after the zip was complete. Never throws.
ZipResult ZipForUser(HWND owner, const ZipJob& job) noexcept;

// Shows the message for a failure that is known before a run; never throws.
ZipResult RefuseForUser(HWND owner, ZipResult result) noexcept;

} // namespace obarchive
