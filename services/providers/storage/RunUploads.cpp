#include "services/providers/storage/RunUploads.h"

#include <algorithm>
#include <utility>

namespace providers {

std::shared_ptr<RunUpload> RunUploads::Add(std::wstring accountKey, StoredFile file) {
    const std::wstring address = L"unshared:" + std::to_wstring(++count_);
    return uploads_.emplace_back(std::make_shared<RunUpload>(
        RunUpload{std::move(accountKey), std::move(file), address, {}, false}));
}

void RunUploads::Drop(const std::shared_ptr<RunUpload>& upload) noexcept {
    std::erase(uploads_, upload);
}

std::shared_ptr<RunUpload> RunUploads::Find(const std::wstring& accountKey,
                                            const std::wstring& link) const {
    const auto found = std::find_if(uploads_.rbegin(), uploads_.rend(), [&](const auto& upload) {
        return upload->link == link && upload->accountKey == accountKey;
    });
    return found != uploads_.rend() ? *found : nullptr;
}

} // namespace providers
