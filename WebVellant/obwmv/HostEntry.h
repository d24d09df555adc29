// The host side of one request.
#pragma once

#include <windows.h>

#include <cstdint>

namespace obwmv {

// Takes the block `id`, runs the driver of its entry point and leaves the answer in the block. -1
// when there is no such block or its status is not that of a request, else 0. The block is never
// unmapped: the exit of the process does that.
int HostEntry(HWND owner, std::uint32_t id);

} // namespace obwmv
