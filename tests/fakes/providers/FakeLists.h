// The lists that a provider hands out.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "contracts/ProviderManager.h"

namespace fakes {

struct FakeDownloadList : obcontract::DownloadList {
    FakeDownloadList();
    std::vector<obcontract::CloudItem> items;
};

struct FakeUploadList : obcontract::UploadList {
    FakeUploadList(std::uint32_t provider, const wchar_t* accountKey);
    obcontract::ProviderProfile account{}; // to which its items go
    std::vector<obcontract::CloudItem> items;
};

// A record with these texts, each followed by zeros.
obcontract::CloudItem MakeItem(const obcontract::ProviderProfile& account, const std::wstring& name,
                               const std::wstring& link);

} // namespace fakes
