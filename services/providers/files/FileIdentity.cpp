#include "services/providers/files/FileIdentity.h"

#include "ObLib/Src/Win32/LongPath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace providers {

std::optional<FileIdentity> IdentityOf(HANDLE open) noexcept {
    BY_HANDLE_FILE_INFORMATION info;
    if (!GetFileInformationByHandle(open, &info)) return {};
    return FileIdentity{info.dwVolumeSerialNumber,
                        std::uint64_t{info.nFileIndexHigh} << 32 | info.nFileIndexLow};
}

std::optional<FileIdentity> IdentityOfFolder(const std::wstring& path) {
    if (path.empty()) return {};
    const ObLib::UniqueKernelHandle folder(
        CreateFileW(ObLib::WithLongPathPrefix(path).c_str(), FILE_READ_ATTRIBUTES,
                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                    FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!folder) return {};
    return IdentityOf(folder.Get());
}

std::optional<std::wstring> FinalPath(HANDLE open) {
    constexpr DWORD kNormal = FILE_NAME_NORMALIZED | VOLUME_NAME_DOS;
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = GetFinalPathNameByHandleW(open, path.data(), MAX_PATH, kNormal);
    if (length > MAX_PATH) { // the length that is needed, its NUL included
        path.resize(length);
        length = GetFinalPathNameByHandleW(open, path.data(), length, kNormal);
    }
    if (length == 0 || length >= path.size()) return {};
    path.resize(length);
    return path;
}

} // namespace providers
