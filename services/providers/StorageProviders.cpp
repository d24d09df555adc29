#include "services/providers/StorageProviders.h"

#include <initializer_list>
#include <memory>

#include "services/providers/storage/UploadRun.h"

namespace providers {
namespace {

using Factory = std::unique_ptr<StorageProvider> (*)(const AccountBook& book);

// One row a provider.
const std::initializer_list<Factory> kFactories = {};

} // namespace

StorageParts MakeStorageParts(const AccountBook& book) {
    StorageParts parts;
    for (const Factory make : kFactories) parts.providers.push_back(make(book));
    parts.upload = [](StorageProvider& provider, const std::wstring& accountKey,
                      const UploadFile& file, const UploadTexts& texts, HWND owner, HANDLE ended) {
        return RunUploadInWindow(provider, accountKey, file, texts, owner, ended);
    };
    return parts;
}

} // namespace providers
