// Which providers a run uses: what SelectProviders put in or left out.
#pragma once

#include <cstdint>
#include <vector>

#include "contracts/ProviderManager.h"
#include "services/providers/Catalogue.h"

namespace providers {

// Lasts for one run of its manager; nothing of it is stored.
class Selection {
public:
    // Mode kSelectUse puts a provider in, kSelectLeaveOut takes it out again. False, with nothing
    // changed, for another mode and for a provider that the catalogue doesn't have.
    bool Select(const Catalogue& catalogue, std::uint32_t mode, std::uint32_t providerId,
                obcontract::ProviderKind kind);

    // Whether any provider of the kind is in.
    bool HasAny(obcontract::ProviderKind kind) const noexcept;

    // The selected transforms, in no order that means anything.
    std::vector<obcontract::TransformId> Transforms() const;

private:
    struct Selected {
        std::uint32_t providerId;
        obcontract::ProviderKind kind;
        bool operator==(const Selected&) const = default;
    };
    std::vector<Selected> selected_;
};

} // namespace providers
