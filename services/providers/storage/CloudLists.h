// The lists that a provider's instance makes and takes back.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "contracts/ProviderManager.h"
#include "services/providers/storage/StorageProvider.h"

namespace providers {

// Files in the cloud: those that are to get links, or those that the user picked.
class OwnDownloadList : public obcontract::DownloadList {
public:
    OwnDownloadList();

    std::vector<obcontract::CloudItem> items;
    std::wstring failure; // why a pick failed; empty otherwise

private:
    static void* const* Table();

    obcontract::Bool GetItem(std::uint32_t index, obcontract::CloudItem* item);
    // Takes no record with a text that doesn't end within its field.
    void AddItem(const obcontract::CloudItem* item);
};

// Files to upload to one account, and those of them that it has stored.
class OwnUploadList : public obcontract::UploadList {
public:
    struct Entry {
        UploadFile file;
        std::optional<obcontract::CloudItem> stored = {}; // nothing until the file is stored
    };

    explicit OwnUploadList(std::wstring ofAccount);

    std::wstring accountKey;
    std::vector<Entry> entries;

private:
    static void* const* Table();

    // Takes no null, no file without path or name, and no name that the record of a file has no
    // room for.
    void AddFile(const wchar_t* localPath, const wchar_t* cloudName, std::uint64_t, std::uint64_t,
                 const wchar_t* targetFolder);
    // Counts the stored files alone.
    obcontract::Bool GetItem(std::uint32_t index, obcontract::CloudItem* item);
    void ResetList(std::uint32_t);
};

} // namespace providers
