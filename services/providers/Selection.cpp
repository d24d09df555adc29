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

std::vector<obcontract::TransformId> Selection::Transforms() const {
    std::vector<obcontract::TransformId> transforms;
    for (const Selected& selected : selected_) {
        if (selected.kind != obcontract::ProviderKind::Transform) continue;
        transforms.push_back(static_cast<obcontract::TransformId>(selected.providerId));
    }
    return transforms;
}

} // namespace providers
