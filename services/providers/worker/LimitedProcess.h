// Starts a program with as few rights as it needs to work on handles that it is given.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace providers {

struct LimitedProcess {
    // Closing the job ends the process, also when this process is killed.
    ObLib::UniqueKernelHandle job;
    ObLib::UniqueKernelHandle process;

    explicit operator bool() const noexcept { return static_cast<bool>(process); }
};

struct ProcessLimits {
    std::size_t memory = std::size_t{1} << 30; // bytes that it may commit
};

// Starts the program with this full path, without a window; it inherits the two handles and no
// other, and gets their values as decimal numbers on its command line. It runs at low integrity and
// without privileges, in a job of its own that allows no further process, limits its memory and
// bars it from clipboard, desktop and windows of others; it loads no code that others inject and
// makes none. It can still read what the user can read, and use the network: both need a container
// that not every system library starts in. Empty, with the last error, when it can't be started
// with all of these limits.
LimitedProcess StartLimited(const std::wstring& program, HANDLE first, HANDLE second,
                            const ProcessLimits& limits);

} // namespace providers
