// The storage half of a manager's session.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "contracts/ProviderManager.h"
#include "services/providers/storage/ProviderInstance.h"
#include "services/providers/storage/StorageRun.h"

namespace providers {

// Makes the providers of a session.
using StoragePartsMaker = StorageParts (*)(const AccountBook& book);

// One instance for each storage provider, from Init to Deinit; and what is due for deletion, which
// begins with it. Some exports name no manager: for them all halves of the module are known.
class StorageHalf {
public:
    // The hive and key that Init was given.
    StorageHalf(HKEY hive, const std::wstring& key, StoragePartsMaker make);
    ~StorageHalf() { End(); }
    StorageHalf(const StorageHalf&) = delete;
    StorageHalf& operator=(const StorageHalf&) = delete;

    // Lets all that still runs end soon, and waits for nothing. From here on no export finds the
    // instances.
    void End() noexcept;

    const std::vector<std::shared_ptr<ProviderInstance>>& Instances() const noexcept {
        return instances_;
    }
    // One of this half; null for any other pointer.
    std::shared_ptr<ProviderInstance> Find(const obcontract::CloudProvider* provider) const;
    // A list of one of its instances; null for any other pointer.
    std::shared_ptr<OwnDownloadList> Find(const obcontract::DownloadList* list) const;

    // On any thread. An instance of any manager; null for any other pointer.
    static std::shared_ptr<ProviderInstance> FindAny(const obcontract::CloudProvider* provider);
    // The run of the manager whose session began last; null when there is no session.
    static std::shared_ptr<StorageRun> Latest();

private:
    std::shared_ptr<StorageRun> run_;
    std::vector<std::shared_ptr<ProviderInstance>> instances_;
};

} // namespace providers
