// The bytes of an upload: from the file of this machine to its part in the folder.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

#include "services/providers/folder/BreakableCalls.h"
#include "services/providers/folder/FolderPatience.h"
#include "services/providers/folder/PartFile.h"
#include "services/providers/storage/StorageProvider.h"

namespace providers {

enum class CopyFault : std::uint8_t {
    None,
    Cancelled,
    Source, // can't be read
    Target, // the folder's error
    Length, // the part isn't as long as the file
};

struct CopyEnd {
    CopyFault fault = CopyFault::None;
    DWORD error = 0; // of the system
};

// From so many bytes on that may be lost in a break, the folder is made to store them.
inline constexpr std::uint64_t kStoredAtOnce = 16u << 20;

// Copies a file once. When the folder can't be reached any more, it waits for it and goes on with
// what the folder has stored for certain: what was only sent may be lost, with its length there. On
// the upload's thread.
class FolderCopy {
public:
    // `source`, which can read, has `total` bytes and is at its beginning; `part` is made. All
    // outlive this object.
    FolderCopy(HANDLE source, std::uint64_t total, PartFile& part, BreakableCalls& calls,
               UploadProgress& progress, const FolderPatience& patience)
        : source_(source), total_(total), part_(part), calls_(calls), progress_(progress),
          patience_(patience) {}

    // The part stays open, and is complete and stored after None.
    CopyEnd Run();

private:
    CopyEnd GoOn();
    CopyEnd Store();
    CopyEnd CheckLength();
    bool Resume();
    bool OpenWhereStored();

    HANDLE source_;
    std::uint64_t total_; // bytes, as all below
    PartFile& part_;
    BreakableCalls& calls_;
    UploadProgress& progress_;
    FolderPatience patience_;
    std::uint64_t sent_ = 0;
    std::uint64_t stored_ = 0; // for certain
    std::uint64_t storedAtBreak_ = 0;
    std::optional<ULONGLONG> broken_; // since when, without a byte more stored
};

} // namespace providers
