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

bool IsLink(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(ObLib::WithLongPathPrefix(path).c_str());
    return attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT);
}

} // namespace providers
