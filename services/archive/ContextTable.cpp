#include "services/archive/ContextTable.h"

namespace obarchive {

obcontract::ZipContext ContextTable::Create() {
    const std::lock_guard guard(lock_);
    jobs_.try_emplace(last_ + 1);
    return ++last_;
}

void ContextTable::Destroy(obcontract::ZipContext context) {
    const std::lock_guard guard(lock_);
    jobs_.erase(context);
}

std::optional<ZipJob> ContextTable::Copy(obcontract::ZipContext context) const {
    const std::lock_guard guard(lock_);
    const auto found = jobs_.find(context);
    if (found == jobs_.end()) return std::nullopt;
    return found->second;
}

} // namespace obarchive
