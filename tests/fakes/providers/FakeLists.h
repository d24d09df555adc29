// The lists that a provider hands out.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "contracts/ProviderManager.h"

namespace standin {

struct FakeDownloadList : obcore::DownloadList {
    FakeDownloadList();
    std::vector<obcore::CloudItem> items;
};

struct FakeUploadList : obcore::UploadList {
    FakeUploadList(std::uint32_t provider, const wchar_t* accountKey);
    obcore::ProviderProfile account{}; // to which its items go
    std::vector<obcore::CloudItem> items;
};

// A record with these texts, zero behind them.
obcore::CloudItem MakeItem(const obcore::ProviderProfile& account, const std::wstring& name,
                           const std::wstring& link);

} // namespace standin
