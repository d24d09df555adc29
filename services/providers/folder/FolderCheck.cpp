#include "services/providers/folder/FolderCheck.h"

#include <cwchar>
#include <iterator>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/LongPath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/folder/FolderPath.h"
#include "services/providers/storage/GuidText.h"

namespace providers {
namespace {

constexpr wchar_t kBeforeId[] = L"~";
constexpr wchar_t kAfterId[] = L".part";

DWORD TryToWrite(const std::wstring& path) {
    const ObLib::UniqueKernelHandle probe(
        CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW,
                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    if (!probe) return GetLastError();
    DWORD written = 0;
    return WriteFile(probe.Get(), "", 1, &written, nullptr) && written == 1 ? 0 : GetLastError();
}

DWORD Check(const std::wstring& folder) {
    const DWORD attributes = GetFileAttributesW(ObLib::WithLongPathPrefix(folder).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return GetLastError();
    if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) return ERROR_DIRECTORY;
    const std::wstring probe = PartName();
    if (probe.empty()) return ERROR_OUTOFMEMORY;
    return TryToWrite(ObLib::WithLongPathPrefix(BelowFolder(folder, probe)));
}

} // namespace

DWORD CheckFolder(const std::wstring& folder) noexcept {
    return ObLib::Guarded<DWORD>(ERROR_OUTOFMEMORY, [&] { return Check(folder); });
}

std::wstring PartName() {
    const std::wstring id = NewGuidText();
    return id.empty() ? id : kBeforeId + id + kAfterId;
}

bool IsPartName(const std::wstring& name) {
    constexpr std::size_t kAround = std::size(kBeforeId) + std::size(kAfterId) - 2; // without NULs
    return name.size() > kAround && name.starts_with(kBeforeId) && name.ends_with(kAfterId) &&
           IsGuidText(name.substr(std::size(kBeforeId) - 1, name.size() - kAround));
}

std::optional<std::uint64_t> LargestFileIn(const std::wstring& folder) noexcept {
    wchar_t root[1024] = L""; // as long as the folder's own path at most
    wchar_t system[32] = L"";
    if (!GetVolumePathNameW(folder.c_str(), root, static_cast<DWORD>(std::size(root))) ||
        !GetVolumeInformationW(root, nullptr, 0, nullptr, nullptr, nullptr, system,
                               static_cast<DWORD>(std::size(system)))) {
        return {};
    }
    constexpr std::uint64_t kLargestOfFat32 = 0xFFFFFFFF;
    if (_wcsicmp(system, L"FAT32") != 0) return {};
    return kLargestOfFat32;
}

} // namespace providers
