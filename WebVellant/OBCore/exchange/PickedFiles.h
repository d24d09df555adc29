// The result of one run on the dialog path, and where the browser side keeps it for later queries.
#pragma once

#include <shobjidl.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace obcore {

struct PickedFiles {
    std::uint8_t flag = 0;           // carried along, nothing reads it
    std::wstring folder;             // always empty as the host writes it today
    std::vector<std::wstring> paths; // full paths in the order of the block
};

// From the caller's dialog object, compared as an unsigned number, to what was picked in it. The
// pointer is a key and is never followed.
using ResultMap = std::map<std::uint64_t, PickedFiles>;

inline std::uint64_t ResultKey(const IFileDialog* dialog) noexcept {
    return reinterpret_cast<std::uint64_t>(dialog);
}

// The one map of the process. Emptied at the start of each run on that path, so that it has at
// most one result. No lock: a browser shows one such dialog at a time per process.
ResultMap& Results() noexcept;

} // namespace obcore
