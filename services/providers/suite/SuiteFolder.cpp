#include "services/providers/suite/SuiteFolder.h"

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/LongPath.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/files/PathBelow.h"

namespace providers {
namespace {

using ObLib::WithLongPathPrefix;

// Programs of others can't open what has a longer path than 259 units, and a new profile has files
// with up to 150 units below its folder.
constexpr std::size_t kLongestPlace = 100;

// Without a trailing backslash; empty when the system gives none.
std::wstring TemporaryFolder() {
    wchar_t path[MAX_PATH + 2] = {};
    const DWORD length = GetTempPathW(MAX_PATH + 1, path);
    return length > 0 && length <= MAX_PATH ? std::wstring(path, length - 1) : std::wstring();
}

// The folder itself while its path is short; otherwise the first one on the way to it from the
// temporary folder, or the temporary folder. Without the prefix.
std::wstring PlaceFor(const std::wstring& folder) {
    std::wstring path = ObLib::WithoutLongPathPrefix(folder);
    if (path.size() <= kLongestPlace) return path;
    const std::wstring temporary = TemporaryFolder();
    if (temporary.empty() || temporary.size() >= path.size()) return path;
    if (!IsPathBelow(path, temporary)) return temporary;
    const std::wstring top = path.substr(0, path.find(L'\\', temporary.size() + 1));
    return top.size() <= kLongestPlace ? top : temporary;
}

// The system deletes nothing that is read-only, no folder either.
void MakeWritable(const std::wstring& path, DWORD attributes) {
    if (attributes & FILE_ATTRIBUTE_READONLY)
        SetFileAttributesW(path.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
}

// A program can't nest its files deeper than a path is long; what is deeper stays.
constexpr int kMostLevels = 64;

// Deletes what it can. The path has the prefix.
void DeleteFolder(const std::wstring& path, int level) {
    WIN32_FIND_DATAW found;
    ObLib::UniqueFindHandle search(FindFirstFileW((path + L"\\*").c_str(), &found));
    for (bool more = static_cast<bool>(search); more;
         more = FindNextFileW(search.Get(), &found) != FALSE) {
        const std::wstring name = found.cFileName;
        if (name == L"." || name == L"..") continue;
        const std::wstring item = path + L'\\' + name;
        MakeWritable(item, found.dwFileAttributes);
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
            DeleteFileW(item.c_str());
        } else if (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) {
            RemoveDirectoryW(item.c_str()); // the link alone
        } else if (level < kMostLevels) {
            DeleteFolder(item, level + 1);
        }
    }
    search.Reset();
    RemoveDirectoryW(path.c_str());
}

} // namespace

// The folder doesn't stay when there is no object that deletes it.
std::unique_ptr<SuiteFolder> SuiteFolder::Own(std::wstring path, const std::wstring& prefixed) {
    bool isOwned = false;
    const ObLib::ScopeExit remove([&] {
        if (!isOwned) RemoveDirectoryW(prefixed.c_str());
    });
    const auto identity = IdentityOfFolder(prefixed);
    if (!identity) return nullptr;
    std::unique_ptr<SuiteFolder> made(new SuiteFolder(std::move(path), prefixed, *identity));
    isOwned = true;
    return made;
}

// A name that is taken isn't this run's.
std::unique_ptr<SuiteFolder> SuiteFolder::MakeFor(const std::wstring& folder) {
    constexpr int kMostNames = 100;
    const std::wstring place = PlaceFor(folder);
    for (int number = 1; number <= kMostNames; ++number) {
        std::wstring path = place + L"\\~suite" + std::to_wstring(number);
        const std::wstring prefixed = WithLongPathPrefix(path);
        if (CreateDirectoryW(prefixed.c_str(), nullptr)) return Own(std::move(path), prefixed);
        if (GetLastError() != ERROR_ALREADY_EXISTS) return nullptr;
    }
    return nullptr;
}

// A shortage of memory may pass, as a program may close a file that it has open.
SuiteFolder::~SuiteFolder() {
    constexpr int kAttempts = 100;
    constexpr DWORD kPause = 20; // milliseconds
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        bool isDone = false;
        ObLib::RanGuarded([&] { isDone = TryToDelete(); });
        if (isDone) return;
        Sleep(kPause);
    }
}

// True when there is nothing left of it, or something else in its place.
bool SuiteFolder::TryToDelete() const {
    if (IsLink(prefixed_) || IdentityOfFolder(prefixed_) != identity_) return true;
    DeleteFolder(prefixed_, 0);
    return GetFileAttributesW(prefixed_.c_str()) == INVALID_FILE_ATTRIBUTES;
}

bool SuiteFolder::MakeFolder(const wchar_t* name) const {
    return CreateDirectoryW(WithLongPathPrefix(*this / name).c_str(), nullptr) != FALSE;
}

ObLib::UniqueKernelHandle SuiteFolder::MakeFile(const wchar_t* name) const {
    return ObLib::UniqueKernelHandle(CreateFileW(WithLongPathPrefix(*this / name).c_str(),
                                                 GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                                 FILE_ATTRIBUTE_NORMAL, nullptr));
}

} // namespace providers
