// Which providers a run uses: what SelectProviders put in or left out.
#pragma once

#include <cstdint>

#include "contracts/ProviderManager.h"
#include "services/providers/Catalogue.h"
#include "services/providers/transforms/ProviderSet.h"

namespace providers {

// Lasts for one run of its manager; nothing of it is stored.
class Selection {
public:
    // Mode kSelectUse puts a provider in, kSelectLeaveOut takes it out again. False, with nothing
    // changed, for another mode and for a provider that the catalogue doesn't have.
    bool Select(const Catalogue& catalogue, std::uint32_t mode, std::uint32_t providerId,
                obcontract::ProviderKind kind) noexcept;

    // Whether any provider of the kind is in.
    bool HasAny(obcontract::ProviderKind kind) const noexcept;

    const ProviderSet& Transforms() const noexcept { return transforms_; }

private:
    ProviderSet transforms_;
    ProviderSet storages_;
};

} // namespace providers
