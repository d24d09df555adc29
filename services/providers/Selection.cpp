#include "services/providers/Selection.h"

#include <algorithm>

namespace providers {

bool Selection::Select(const Catalogue& catalogue, std::uint32_t mode, std::uint32_t providerId,
                       obcontract::ProviderKind kind) {
    if (mode != obcontract::kSelectUse && mode != obcontract::kSelectLeaveOut) return false;
    if (!catalogue.Contains(providerId, kind)) return false;
    const Selected wanted{providerId, kind};
    std::erase(selected_, wanted);
    if (mode == obcontract::kSelectUse) selected_.push_back(wanted);
    return true;
}

bool Selection::HasAny(obcontract::ProviderKind kind) const noexcept {
    return std::any_of(selected_.begin(), selected_.end(),
                       [kind](const Selected& selected) { return selected.kind == kind; });
}

} // namespace providers
