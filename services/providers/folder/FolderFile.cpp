#include "services/providers/folder/FolderFile.h"

#include <cwchar>
#include <iterator>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/LongPath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/folder/FolderError.h"
#include "services/providers/folder/FolderPath.h"

namespace providers {
namespace {

using ObLib::UniqueKernelHandle;
using ObLib::WithLongPathPrefix;

constexpr wchar_t kSeparator = L'|'; // no path contains it
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

UniqueKernelHandle Open(const std::wstring& path, DWORD access) {
    return UniqueKernelHandle(CreateFileW(WithLongPathPrefix(path).c_str(),
                                          access | FILE_READ_ATTRIBUTES, kShareAll, nullptr,
                                          OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
}

// Some file systems make up an id at each opening.
bool KeepsIds(HANDLE open) {
    DWORD flags = 0;
    return GetVolumeInformationByHandleW(open, nullptr, 0, nullptr, nullptr, &flags, nullptr, 0) &&
           (flags & FILE_SUPPORTS_OPEN_BY_FILE_ID);
}

std::wstring ParentOf(const std::wstring& path) {
    const std::size_t slash = path.find_last_of(L'\\');
    return slash == std::wstring::npos ? std::wstring() : path.substr(0, slash);
}

// The drive or share that the path is on, with a backslash at its end.
std::wstring RootOf(const std::wstring& path) {
    if (!path.starts_with(L"\\\\")) return path.substr(0, 3);
    const std::size_t server = path.find(L'\\', 2);
    const std::size_t share = server == std::wstring::npos ? server : path.find(L'\\', server + 1);
    return path.substr(0, share) + L'\\';
}

// A file isn't gone while its drive or share is.
DeletionEnd EndWithout(const std::wstring& path, DWORD error) {
    if (error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND) {
        return DeletionEnd::Unreachable;
    }
    const DWORD root = GetFileAttributesW(RootOf(path).c_str());
    return root == INVALID_FILE_ATTRIBUTES ? DeletionEnd::Unreachable : DeletionEnd::Gone;
}

bool Delete(HANDLE open) {
    FILE_DISPOSITION_INFO gone{TRUE};
    return SetFileInformationByHandle(open, FileDispositionInfo, &gone, sizeof gone) != FALSE;
}

} // namespace

std::wstring TextOf(const FolderPlace& place) {
    return std::to_wstring(place.madeFolders) + kSeparator + place.path;
}

std::optional<FolderPlace> PlaceOf(const std::wstring& text) {
    constexpr unsigned kMostFolders = 16;
    const std::size_t separator = text.find(kSeparator);
    if (separator == std::wstring::npos || separator == 0 || separator > 2) return {};
    wchar_t* end = nullptr;
    const unsigned long folders = std::wcstoul(text.c_str(), &end, 10);
    const std::wstring path = text.substr(separator + 1);
    const bool isFull = !FullFolderPath(ParentOf(path) + L'\\').empty();
    if (end != text.c_str() + separator || folders > kMostFolders || !isFull) return {};
    return FolderPlace{path, static_cast<unsigned>(folders)};
}

std::wstring VersionOf(HANDLE open) {
    BY_HANDLE_FILE_INFORMATION info{};
    if (!GetFileInformationByHandle(open, &info)) return {};
    const bool keepsIds = KeepsIds(open);
    wchar_t text[80] = L"";
    _snwprintf(text, std::size(text) - 1, L"%08lX%08lX-%08lX%08lX-%08lX%08lX", info.nFileSizeHigh,
               info.nFileSizeLow, info.ftLastWriteTime.dwHighDateTime,
               info.ftLastWriteTime.dwLowDateTime, keepsIds ? info.nFileIndexHigh : 0,
               keepsIds ? info.nFileIndexLow : 0);
    return text;
}

std::wstring VersionAt(const std::wstring& path) {
    const UniqueKernelHandle file = Open(path, 0);
    return file ? VersionOf(file.Get()) : std::wstring();
}

DeletionEnd DeleteFolderFile(const StoredFile& file) {
    const auto place = PlaceOf(file.path);
    if (!place || file.version.empty()) return DeletionEnd::Changed;
    {
        const UniqueKernelHandle open = Open(place->path, DELETE);
        if (!open) return EndWithout(place->path, GetLastError());
        const std::wstring version = VersionOf(open.Get());
        if (version.empty()) return DeletionEnd::Unreachable;
        if (version != file.version) return DeletionEnd::Changed;
        if (!Delete(open.Get())) return DeletionEnd::Unreachable;
    }
    RemoveEmptyFolders(place->path, place->madeFolders);
    return DeletionEnd::Gone;
}

void RemoveEmptyFolders(const std::wstring& path, unsigned count) noexcept {
    ObLib::RanGuarded([&] {
        std::wstring folder = ParentOf(path);
        for (; count > 0; --count, folder = ParentOf(folder)) {
            if (!RemoveDirectoryW(WithLongPathPrefix(folder).c_str())) return;
        }
    });
}

} // namespace providers
