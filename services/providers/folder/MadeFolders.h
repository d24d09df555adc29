// The folders that an upload makes on its way.
#pragma once

#include <string>

#include "services/providers/folder/FolderFile.h"

namespace providers {

// Those that are empty are removed with this object.
class MadeFolders {
public:
    MadeFolders() = default;
    ~MadeFolders() { RemoveEmptyFolders(inside_, count_); }
    MadeFolders(const MadeFolders&) = delete;
    MadeFolders& operator=(const MadeFolders&) = delete;

    void Add(const std::wstring& folder) {
        inside_ = folder + L"\\";
        ++count_;
    }
    unsigned Count() const noexcept { return count_; }
    // They stay.
    void Keep() noexcept { count_ = 0; }

private:
    std::wstring inside_;
    unsigned count_ = 0;
};

} // namespace providers
