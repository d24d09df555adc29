#include "services/providers/Catalogue.h"

namespace providers {

void Catalogue::Add(const CatalogueEntry& entry) {
    if (!Contains(entry.providerId, entry.kind)) entries_.push_back(entry);
}

bool Catalogue::Contains(std::uint32_t providerId, obcontract::ProviderKind kind) const noexcept {
    return Find(providerId, kind) != nullptr;
}

obcontract::CloudProvider* Catalogue::Instance(std::uint32_t providerId,
                                               obcontract::ProviderKind kind) const noexcept {
    const CatalogueEntry* entry = Find(providerId, kind);
    return entry ? entry->instance : nullptr;
}

obcontract::CloudProvider* Catalogue::Next() noexcept {
    while (cursor_ < entries_.size()) {
        const CatalogueEntry& entry = entries_[cursor_++];
        if (entry.kind == obcontract::ProviderKind::Storage) return entry.instance;
    }
    return nullptr;
}

const CatalogueEntry* Catalogue::Find(std::uint32_t providerId,
                                      obcontract::ProviderKind kind) const noexcept {
    for (const CatalogueEntry& entry : entries_) {
        if (entry.providerId == providerId && entry.kind == kind) return &entry;
    }
    return nullptr;
}

} // namespace providers
