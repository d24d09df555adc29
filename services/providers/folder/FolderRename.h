// The last step of an upload to a folder: the file gets its own name.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "services/providers/folder/FolderPatience.h"

namespace providers {

enum class RenameFault : std::uint8_t {
    None,
    Taken,   // another file has the name
    Failed,  // it doesn't have the name
    Unknown, // the folder can't be asked any more whether it has
};

struct RenameEnd {
    RenameFault fault = RenameFault::None;
    DWORD error = 0; // of the system
};

// Gives the file at `part` the path `target`, without replacing a file; both have the long path's
// prefix. `version` is the file's, empty when it isn't known. A server that did it before its
// connection broke is asked for a while, until `cancelled` is set; the rename itself isn't broken
// off.
RenameEnd RenamePart(const std::wstring& part, const std::wstring& target,
                     const std::wstring& version, HANDLE cancelled, const FolderPatience& patience);

} // namespace providers
