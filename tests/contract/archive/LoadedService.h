// The archive service beside the program, loaded and bound as by any caller.
#pragma once

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/ArchiveService.h"

namespace obtest {

class LoadedService {
public:
    LoadedService();

    // The file was found and has every entry.
    bool IsComplete() const { return complete_; }
    HMODULE Module() const { return module_.Get(); }
    const obcontract::ArchiveServiceEntries* operator->() const { return &entries_; }

private:
    ObLib::UniqueModule module_;
    obcontract::ArchiveServiceEntries entries_{};
    bool complete_ = false;
};

} // namespace obtest
