#include "services/providers/folder/FolderError.h"

#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

struct KnownError {
    DWORD error;
    FolderError kind;
};

constexpr DWORD kDiskQuotaExceeded = 1295; // the toolchain's headers don't name it

constexpr KnownError kKnown[] = {
    {ERROR_FILE_NOT_FOUND, FolderError::Unreachable},
    {ERROR_PATH_NOT_FOUND, FolderError::Unreachable},
    {ERROR_INVALID_DRIVE, FolderError::Unreachable},
    {ERROR_NOT_READY, FolderError::Unreachable},
    {ERROR_REM_NOT_LIST, FolderError::Unreachable},
    {ERROR_BAD_NETPATH, FolderError::Unreachable},
    {ERROR_NETWORK_BUSY, FolderError::Unreachable},
    {ERROR_DEV_NOT_EXIST, FolderError::Unreachable},
    {ERROR_ADAP_HDW_ERR, FolderError::Unreachable},
    {ERROR_BAD_NET_RESP, FolderError::Unreachable},
    {ERROR_UNEXP_NET_ERR, FolderError::Unreachable},
    {ERROR_NETNAME_DELETED, FolderError::Unreachable},
    {ERROR_BAD_NET_NAME, FolderError::Unreachable},
    {ERROR_SEM_TIMEOUT, FolderError::Unreachable},
    {ERROR_NO_NET_OR_BAD_PATH, FolderError::Unreachable},
    {ERROR_NETWORK_UNREACHABLE, FolderError::Unreachable},
    {ERROR_HOST_UNREACHABLE, FolderError::Unreachable},
    {ERROR_CONNECTION_ABORTED, FolderError::Unreachable},
    {ERROR_CONNECTION_UNAVAIL, FolderError::Unreachable},
    {ERROR_DEVICE_NOT_CONNECTED, FolderError::Unreachable},
    {ERROR_DIRECTORY, FolderError::Unreachable},
    {ERROR_LOGON_FAILURE, FolderError::LoginNeeded},
    {ERROR_INVALID_PASSWORD, FolderError::LoginNeeded},
    {ERROR_SESSION_CREDENTIAL_CONFLICT, FolderError::LoginNeeded},
    {ERROR_NOT_LOGGED_ON, FolderError::LoginNeeded},
    {ERROR_NO_SUCH_LOGON_SESSION, FolderError::LoginNeeded},
    {ERROR_PASSWORD_EXPIRED, FolderError::LoginNeeded},
    {ERROR_ACCESS_DENIED, FolderError::Denied},
    {ERROR_NETWORK_ACCESS_DENIED, FolderError::Denied},
    {ERROR_WRITE_PROTECT, FolderError::Denied},
    {ERROR_PRIVILEGE_NOT_HELD, FolderError::Denied},
    {ERROR_DISK_FULL, FolderError::Full},
    {ERROR_HANDLE_DISK_FULL, FolderError::Full},
    {ERROR_NOT_ENOUGH_QUOTA, FolderError::Full},
    {kDiskQuotaExceeded, FolderError::Full},
    {ERROR_FILE_TOO_LARGE, FolderError::TooLarge},
};

UINT TextOfKind(FolderError kind) noexcept {
    switch (kind) {
    case FolderError::Unreachable:
        return OB_TEXT_FOLDER_UNREACHABLE;
    case FolderError::LoginNeeded:
        return OB_TEXT_FOLDER_UPLOAD_LOGIN;
    case FolderError::Denied:
        return OB_TEXT_FOLDER_DENIED;
    case FolderError::Full:
        return OB_TEXT_FOLDER_FULL;
    case FolderError::TooLarge:
        return OB_TEXT_FOLDER_TOO_LARGE;
    case FolderError::Other:
        break;
    }
    return OB_TEXT_FOLDER_OTHER;
}

} // namespace

FolderError FolderErrorOf(DWORD error) noexcept {
    for (const KnownError& known : kKnown) {
        if (known.error == error) return known.kind;
    }
    return FolderError::Other;
}

std::wstring UploadSentence(DWORD error, const std::wstring& fileName, const std::wstring& folder) {
    return FormatOwnText(TextOfKind(FolderErrorOf(error)),
                         {fileName, folder, std::to_wstring(error)});
}

} // namespace providers
