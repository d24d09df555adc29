#include "services/providers/storage/StorageRun.h"

#include <new>
#include <utility>

namespace providers {

StorageRun::StorageRun(HKEY hive, const std::wstring& key, StorageParts parts)
    : book_(hive, key), deletions_(hive, key), parts_(book_), given_(std::move(parts)),
      ended_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    if (!ended_) throw std::bad_alloc();
}

StorageProvider* StorageRun::ProviderOf(const std::wstring& accountKey) const {
    for (const auto& provider : given_.providers) {
        if (book_.Contains(provider->Id(), accountKey)) return provider.get();
    }
    return nullptr;
}

StorageProvider* StorageRun::ProviderWith(std::uint32_t id) const noexcept {
    for (const auto& provider : given_.providers) {
        if (provider->Id() == id) return provider.get();
    }
    return nullptr;
}

} // namespace providers
