// What the browser side puts on the host's command line: "path" id owner.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

namespace obwmvapp {

struct HostRequest {
    std::int32_t id; // of the exchange block
    HWND owner;      // the browser side's layer window
};

// Reads the whole command line of the process. Nothing when an argument is missing, is no decimal
// number of its width, or when more arguments follow.
std::optional<HostRequest> ParseHostCommandLine(const wchar_t* commandLine);

} // namespace obwmvapp
