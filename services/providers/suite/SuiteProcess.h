// Starts an office suite in a job that ends it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace providers {

// The job ends the processes in it with this process. It sets no UI limits: the system can't nest a
// job that has them, and browsers already run in jobs.
ObLib::UniqueKernelHandle MakeSuiteJob();

// Processor time of all processes of the job so far, in units of 100 nanoseconds; 0 when the system
// doesn't count it.
std::uint64_t TimeOfJob(HANDLE job) noexcept;

// Ends the processes of the job.
void EndJob(HANDLE job) noexcept;

// The processes of the job go on without this one and without its limits from now on.
void FreeJob(HANDLE job) noexcept;

struct SuiteStart {
    std::wstring program;   // full path
    std::wstring arguments; // after the program's name on the command line
    std::wstring temporary; // the folder that it gets as the temporary one
};

// Starts the program in the job: without a window, without this process's handles and privileges.
// It has the user's other rights, since it needs fonts, printers and settings. Empty when it can't
// be started.
ObLib::UniqueKernelHandle StartSuite(const SuiteStart& start, HANDLE job);

} // namespace providers
