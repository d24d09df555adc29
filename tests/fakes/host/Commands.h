// What the commands of a script do.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

#include "tests/fakes/host/Script.h"

namespace obtest {

// One run: which block, which owner, and the block's bytes once a command has asked for them. The
// view is never unmapped, as in a real host.
struct HostRun {
    std::uint32_t id = 0;
    HWND owner = nullptr;
    std::uint8_t* block = nullptr;
};

// Carries one command out. An exit code when it ends the run.
std::optional<int> RunHostCommand(const HostCommand& command, HostRun& run);

// Appends a line to the record.
void RecordHostLine(const std::wstring& line);

} // namespace obtest
