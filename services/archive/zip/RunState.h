// What the parts of one run share: the first failure, and how far the run is.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "services/archive/zip/ZipJob.h"
#include "services/archive/zip/ZipResults.h"

namespace obarchive {

// The container library folds a failure into codes of its own, and a read error in the middle of an
// encrypted entry doesn't reach its caller at all. So each part notes here what really happened,
// and the run trusts the note over the library's result. One thread.
struct RunState {
    const ProgressCallback* progress = nullptr; // may be null or empty
    std::wstring file;                          // the source that was read last
    std::uint64_t bytesRead = 0;
    std::uint64_t totalBytes = 0;
    ZipResult failure = ZipResult::Ok;
    std::wstring failedFile; // the source that the failure concerns; empty when it is none

    // Keeps the first failure: later ones only follow from it.
    void Fail(ZipResult result, const std::wstring& source = {}) {
        if (failure != ZipResult::Ok) return;
        failure = result;
        failedFile = source;
    }

    // Reports the progress. False with the failure noted when the run is to end. Doesn't throw, as
    // nothing may throw through the library's C code.
    bool Report() noexcept {
        if (!progress || !*progress) return true;
        try {
            if ((*progress)({file, bytesRead, totalBytes})) return true;
            Fail(ZipResult::Cancelled);
        } catch (...) {
            Fail(ZipResult::Unexpected);
        }
        return false;
    }
};

// What a system error means for a file that is read, and for the zip that is written.
inline ZipResult SourceFailure(DWORD error) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_NOT_READY:
        return ZipResult::SourceMissing;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
        return ZipResult::SourceLocked;
    case ERROR_FILENAME_EXCED_RANGE:
        return ZipResult::PathTooLong;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
        return ZipResult::OutOfMemory;
    default:
        return ZipResult::SourceUnreadable;
    }
}

inline ZipResult TargetFailure(DWORD error) {
    constexpr DWORD kDiskQuotaExceeded = 1295; // the compiler's headers lack its name
    switch (error) {
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case kDiskQuotaExceeded:
    case ERROR_FILE_TOO_LARGE:
        return ZipResult::DiskFull;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
        return ZipResult::TargetExists;
    case ERROR_FILENAME_EXCED_RANGE:
        return ZipResult::PathTooLong;
    default:
        return ZipResult::TargetUnwritable;
    }
}

} // namespace obarchive
