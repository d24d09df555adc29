// Files in the cloud that are to be deleted later, below the manager's registry key.
//
//   KEY\Deletions\<GUID>
//       Provider  REG_QWORD  id of the account's provider
//       Account   REG_SZ     key of the account, which may be logged out by then
//       Path      REG_SZ     of the file, as the provider understands it
//       Version   REG_SZ     that the file had when it was stored
//       Size      REG_QWORD  bytes
//       Due       REG_QWORD  time in UTC from which on it is deleted
//
// No link and no password is among them.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "services/providers/storage/StorageProvider.h"

namespace providers {

struct ScheduledDeletion {
    std::uint32_t providerId = 0;
    std::wstring accountKey;
    StoredFile file;       // without its name
    std::uint64_t due = 0; // as TimeNow counts
    std::wstring id = {};  // given by Add
};

// Opens the keys for each access and keeps nothing open in between. On any thread.
class DeletionSchedule {
public:
    // The hive and key that Init was given.
    DeletionSchedule(HKEY hive, std::wstring key);

    // False, with nothing added, when it can't be written, and for a file without a path or a
    // version: that could be another one by then.
    bool Add(const ScheduledDeletion& deletion) const;

    // Those that are due, in the order of their times. What isn't readable is left out and stays.
    std::vector<ScheduledDeletion> DueAt(std::uint64_t time) const;

    void Remove(const ScheduledDeletion& deletion) const;

    // Removes what Add has begun before `time`, as TimeNow counts, and never finished.
    void RemoveUnfinished(std::uint64_t time) const;

    // Without looking whether any is due.
    bool HasAny() const;

private:
    HKEY hive_; // predefined: never closed
    std::wstring path_;
};

} // namespace providers
