// Which file or folder a handle is open on, whatever path led there.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

namespace providers {

struct FileIdentity {
    DWORD volume = 0;
    std::uint64_t file = 0;
    bool operator==(const FileIdentity&) const = default;
};

std::optional<FileIdentity> IdentityOf(HANDLE open) noexcept;

// Of the folder at this path, through links. Nothing when there is none.
std::optional<FileIdentity> IdentityOfFolder(const std::wstring& path);

// Whether the folder at this path is a junction or another link; true also when that isn't known.
bool IsLink(const std::wstring& path);

} // namespace providers
