// A provider that answers from the script.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "contracts/ProviderManager.h"
#include "tests/fakes/providers/FakeLists.h"

namespace fakes {

struct FakeProvider : obcontract::CloudProvider {
    explicit FakeProvider(std::uint32_t id);

    // The script's key for one of this provider's operations.
    std::wstring Key(const wchar_t* operation) const;

    std::uint32_t id;
    std::uint32_t lastError = 0;
    ObPVX::ObPvxCallback* callback = nullptr;
    std::size_t attempts = 0; // of RunUpload since SetCallback
    std::vector<std::unique_ptr<FakeDownloadList>> downloads;
    std::vector<std::unique_ptr<FakeUploadList>> uploads;
};

// Ids of the storage providers that the script names, in its order.
std::vector<std::uint32_t> ScriptedProviders();

// The provider of this id when the script names it, else null. Its address stays the same for the
// life of the module.
FakeProvider* ProviderOfId(std::uint32_t id);

// The provider of this id, whether or not the script names it.
FakeProvider& ProviderBesideTheList(std::uint32_t id);

// The provider that a returned pointer points to; null when it is none of this module.
FakeProvider* FindProvider(const obcontract::CloudProvider* provider);

// The profiles that the script gives it; a number in place of profiles is only a count.
std::vector<obcontract::ProviderProfile> ScriptedProfiles(const FakeProvider& provider);

// Takes a list back; one that isn't this provider's is written down as UnknownList.
void DropDownloadList(FakeProvider& provider, obcontract::DownloadList* list);

} // namespace fakes
