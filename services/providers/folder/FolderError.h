// Why something in a folder failed, by the system's error.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace providers {

enum class FolderError : std::uint8_t {
    Unreachable, // the share, the drive or the folder isn't there
    LoginNeeded, // a share asks for a user name and a password
    Denied,      // not allowed, or write-protected
    Full,        // no room, or a quota
    TooLarge,    // for the file system
    Other,
};

FolderError FolderErrorOf(DWORD error) noexcept;

// Why a file wasn't uploaded, for the user. `error` is the system's.
std::wstring UploadSentence(DWORD error, const std::wstring& fileName, const std::wstring& folder);

} // namespace providers
