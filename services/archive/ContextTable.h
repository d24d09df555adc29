// The contexts of callers: numbers in a table, not addresses, so that a destroyed or invented one
// is refused instead of dereferenced.
#pragma once

#include <map>
#include <mutex>
#include <optional>

#include "ObLib/Src/Win32/Guarded.h"
#include "contracts/ArchiveService.h"
#include "services/archive/zip/ZipJob.h"

namespace obarchive {

// Usable on any thread. Each number is used once in a process, and 0 never.
class ContextTable {
public:
    obcontract::ZipContext Create();

    // Wipes the password with the job. Unknown contexts are ignored.
    void Destroy(obcontract::ZipContext context);

    // Runs `action(job)` under the table's lock; unknown contexts are ignored.
    template <class Action>
    void Change(obcontract::ZipContext context, Action action) {
        const std::lock_guard guard(lock_);
        if (const auto found = jobs_.find(context); found != jobs_.end()) action(found->second);
    }

    // The same; a context whose action throws is destroyed. Zip then refuses it instead of running
    // without a setting that couldn't be stored.
    template <class Action>
    void ChangeOrDestroy(obcontract::ZipContext context, Action action) noexcept {
        if (!ObLib::RanGuarded([&] { Change(context, action); })) Destroy(context);
    }

    // A copy of the job, so that calls from other threads don't change a running one.
    std::optional<ZipJob> Copy(obcontract::ZipContext context) const;

private:
    mutable std::mutex lock_;
    std::map<obcontract::ZipContext, ZipJob> jobs_;
    obcontract::ZipContext last_ = 0;
};

} // namespace obarchive
