#include "services/providers/StorageProviders.h"

#include <memory>

#include "services/providers/folder/NetworkFolder.h"
#include "services/providers/storage/UploadRun.h"
#include "services/providers/webdav/WebDav.h"

namespace providers {
namespace {

using Factory = std::unique_ptr<StorageProvider> (*)(const AccountBook& book);

template <class Provider>
std::unique_ptr<StorageProvider> Make(const AccountBook& book) {
    return std::make_unique<Provider>(book);
}

// One row a provider.
constexpr Factory kFactories[] = {&Make<NetworkFolder>, &Make<WebDav>};

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
