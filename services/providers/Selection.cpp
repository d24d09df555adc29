#include "services/providers/Selection.h"

namespace providers {

bool Selection::Select(const Catalogue& catalogue, std::uint32_t mode, std::uint32_t providerId,
                       obcontract::ProviderKind kind) noexcept {
    if (mode != obcontract::kSelectUse && mode != obcontract::kSelectLeaveOut) return false;
    if (!catalogue.Contains(providerId, kind)) return false;
    ProviderSet& set = kind == obcontract::ProviderKind::Transform ? transforms_ : storages_;
    return set.Set(providerId, mode == obcontract::kSelectUse);
}

bool Selection::HasAny(obcontract::ProviderKind kind) const noexcept {
    return !(kind == obcontract::ProviderKind::Transform ? transforms_ : storages_).IsEmpty();
}

} // namespace providers
