// The passwords of a run's PDFs.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/Secret.h"
#include "services/providers/transforms/RunRecord.h"

namespace providers {

// Wiped at the end of the run.
struct RunPasswords {
    std::vector<ObLib::Secret> given;                     // in the order in which they were typed
    std::map<std::wstring, std::size_t, PathOrder> known; // which of them has opened the file
    std::set<std::wstring, PathOrder> left; // files that stay as they are, by the user's choice
};

} // namespace providers
