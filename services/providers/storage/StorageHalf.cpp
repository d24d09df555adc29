#include "services/providers/storage/StorageHalf.h"

#include <mutex>

#include "services/providers/storage/Deletions.h"
#include "services/providers/storage/LocalDays.h"

namespace providers {
namespace {

std::mutex allLock;
std::vector<const StorageHalf*> all; // in the order in which their sessions began

std::shared_ptr<StorageRun> MakeRun(HKEY hive, const std::wstring& key, StoragePartsMaker make) {
    return std::make_shared<StorageRun>(hive, key, make(AccountBook(hive, key)));
}

} // namespace

StorageHalf::StorageHalf(HKEY hive, const std::wstring& key, StoragePartsMaker make)
    : run_(MakeRun(hive, key, make)) {
    const auto spaces = std::make_shared<AccountSpaces>(run_);
    for (const auto& provider : run_->Providers()) {
        instances_.push_back(std::make_shared<ProviderInstance>(run_, spaces, *provider));
    }
    StartDeletions(run_, TimeNow());
    const std::lock_guard guard(allLock);
    all.push_back(this);
}

void StorageHalf::End() noexcept {
    run_->End();
    const std::lock_guard guard(allLock);
    std::erase(all, this);
}

std::shared_ptr<ProviderInstance>
StorageHalf::Find(const obcontract::CloudProvider* provider) const {
    for (const auto& instance : instances_) {
        if (instance.get() == provider) return instance;
    }
    return nullptr;
}

std::shared_ptr<OwnDownloadList> StorageHalf::Find(const obcontract::DownloadList* list) const {
    for (const auto& instance : instances_) {
        if (auto own = instance->Find(list)) return own;
    }
    return nullptr;
}

std::shared_ptr<ProviderInstance> StorageHalf::FindAny(const obcontract::CloudProvider* provider) {
    const std::lock_guard guard(allLock);
    for (const StorageHalf* half : all) {
        if (auto instance = half->Find(provider)) return instance;
    }
    return nullptr;
}

std::shared_ptr<StorageRun> StorageHalf::Latest() {
    const std::lock_guard guard(allLock);
    return all.empty() ? nullptr : all.back()->run_;
}

} // namespace providers
