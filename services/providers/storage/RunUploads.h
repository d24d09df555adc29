// What was uploaded in this run, by link: two calls of the contract name a file by nothing else.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "services/providers/storage/StorageProvider.h"

namespace providers {

// One uploaded file.
struct RunUpload {
    std::wstring accountKey;
    StoredFile file;
    std::wstring link;    // what its record has: its address, or its share link once it is shared
    std::wstring shareId; // of that share
    bool isShared = false;
};

// Nothing of it leaves the memory of this process. On the thread that owns the dialogs.
class RunUploads {
public:
    // Adds a file, whose link is an address that no other file of the run has. It reveals nothing
    // about the server and nobody can open it.
    std::shared_ptr<RunUpload> Add(std::wstring accountKey, StoredFile file);

    // Takes back what Add gave last for a file that wasn't stored after all.
    void Drop(const std::shared_ptr<RunUpload>& upload) noexcept;

    // The file of a record with this link; the newest one of several. Null when it isn't of this
    // run.
    std::shared_ptr<RunUpload> Find(const std::wstring& accountKey, const std::wstring& link) const;

private:
    std::vector<std::shared_ptr<RunUpload>> uploads_;
    std::uint64_t count_ = 0;
};

} // namespace providers
