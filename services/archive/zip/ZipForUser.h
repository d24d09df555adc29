// One run as the person in front of it has it: with a window when it takes its time, and a sentence
// when it fails.
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

// The work of a run. It is called once, on a thread of its own, and told to end by a callback that
// answers false.
using ZipWork = std::function<ZipResult(const ProgressCallback&)>;

// Runs `work` and answers its result; Cancelled as soon as a person has asked for that, whatever
// the work then answers. The window appears when the work has taken half a second, lives on the
// calling thread and stays alive while a read blocks. Messages of the calling thread are dispatched
// from then on, before that only those that other threads send. A WM_QUIT cancels and is put back.
// An exception of the work is a result; nothing is thrown but what memory shortage throws, and the
// work has ended by then.
ZipResult RunWithProgress(HWND owner, const ZipWork& work, ProgressClock clock = nullptr);

// Zips the job, shows progress and tells a failure. Nothing of a run that failed or was cancelled
// is left, also when the person's cancel came as the zip already stood. Never throws.
ZipResult ZipForUser(HWND owner, const ZipJob& job) noexcept;

// Tells a failure that is known before a run; never throws.
ZipResult RefuseForUser(HWND owner, ZipResult result) noexcept;

} // namespace obarchive
