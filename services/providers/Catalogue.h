// The providers that this module serves.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "contracts/ProviderManager.h"

namespace providers {

struct CatalogueEntry {
    std::uint32_t providerId;
    obcontract::ProviderKind kind;
    obcontract::CloudProvider* instance; // outlives the manager; null for a transform
};

// Answers for what is in it, and walks the storage providers in their order. Used by one thread at
// a time, as the manager that owns it.
class Catalogue {
public:
    // Adds a provider; one of the same id and kind is there only once.
    void Add(const CatalogueEntry& entry);

    bool Contains(std::uint32_t providerId, obcontract::ProviderKind kind) const noexcept;

    // The instance of a provider, null when there is none.
    obcontract::CloudProvider* Instance(std::uint32_t providerId,
                                        obcontract::ProviderKind kind) const noexcept;

    // The walk over the storage providers: one cursor, null at its end until it starts over.
    void StartOver() noexcept { cursor_ = 0; }
    obcontract::CloudProvider* Next() noexcept;

private:
    const CatalogueEntry* Find(std::uint32_t providerId,
                               obcontract::ProviderKind kind) const noexcept;

    std::vector<CatalogueEntry> entries_;
    std::size_t cursor_ = 0;
};

} // namespace providers
