#include "services/providers/files/WorkingCopies.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/LongPath.h"

namespace providers {
namespace {

using ObLib::UniqueKernelHandle;

// Not what a link at the path leads to; folders too.
constexpr DWORD kTheFileItself = FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_BACKUP_SEMANTICS;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

std::wstring FolderOf(const std::wstring& path) { return path.substr(0, path.rfind(L'\\')); }

constexpr std::size_t kDriveLength = 6; // the prefix, a letter and a colon

std::optional<FileIdentity> TemporaryFolder() {
    wchar_t path[MAX_PATH + 1];
    const DWORD length = GetTempPathW(MAX_PATH + 1, path);
    if (length == 0 || length > MAX_PATH) return {};
    return IdentityOfFolder(path);
}

// Whether one of the folders above `path` is `folder`, and none between them a link; the nearest
// `skipped` of them don't count. The path has the prefix for long paths, with which the system
// takes dots as names.
bool IsBelow(const std::wstring& path, const FileIdentity& folder, int skipped) {
    for (std::wstring above = FolderOf(path); above.size() >= kDriveLength;
         above = FolderOf(above)) {
        if (skipped <= 0 && IdentityOfFolder(above + L'\\') == folder) return true;
        if (IsLink(above)) return false;
        --skipped;
    }
    return false;
}

// A file with a second name could be the user's own under the other one.
bool IsRegular(HANDLE file, FileIdentity& identity) {
    BY_HANDLE_FILE_INFORMATION info;
    if (GetFileType(file) != FILE_TYPE_DISK || !GetFileInformationByHandle(file, &info)) {
        return false;
    }
    constexpr DWORD kOther = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    identity = {info.dwVolumeSerialNumber,
                std::uint64_t{info.nFileIndexHigh} << 32 | info.nFileIndexLow};
    return (info.dwFileAttributes & kOther) == 0 && info.nNumberOfLinks == 1;
}

// A file or an empty folder. True also when it is no longer there, as when another one has its
// name.
bool DeleteByIdentity(const std::wstring& path, const FileIdentity& identity) noexcept {
    const UniqueKernelHandle file(CreateFileW(path.c_str(), DELETE | FILE_READ_ATTRIBUTES,
                                              kShareAll, nullptr, OPEN_EXISTING, kTheFileItself,
                                              nullptr));
    if (!file) {
        const DWORD error = GetLastError();
        return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
    }
    if (IdentityOf(file.Get()) != identity) return true;
    FILE_DISPOSITION_INFO gone{TRUE};
    return SetFileInformationByHandle(file.Get(), FileDispositionInfo, &gone, sizeof gone) != FALSE;
}

std::wstring NewName() {
    static std::atomic<unsigned> number{0};
    wchar_t name[48];
    _snwprintf(name, std::size(name), L"\\~ob%x-%x-%x.new", GetCurrentProcessId(),
               static_cast<unsigned>(GetTickCount()), ++number);
    return name;
}

} // namespace

void UnfinishedFiles::Add(const std::wstring& path, const FileIdentity& identity) {
    const std::lock_guard guard(lock_);
    files_.push_back({path, identity});
}

void UnfinishedFiles::Remove(const FileIdentity& identity) {
    const std::lock_guard guard(lock_);
    std::erase_if(files_, [&](const File& file) { return file.identity == identity; });
}

void UnfinishedFiles::AddFolder(const std::wstring& path, const FileIdentity& identity) {
    const std::lock_guard guard(lock_);
    const auto known = std::ranges::find(folders_, identity, &File::identity);
    if (known == folders_.end()) folders_.push_back({path, identity});
}

void UnfinishedFiles::DeleteAll() noexcept {
    const std::lock_guard guard(lock_);
    std::erase_if(files_,
                  [](const File& file) { return DeleteByIdentity(file.path, file.identity); });
    // The system refuses a folder that isn't empty.
    for (const File& folder : folders_) DeleteByIdentity(folder.path, folder.identity);
}

std::wstring WorkingCopy::Folder() const { return FolderOf(path_); }

std::optional<WorkingCopy> WorkingCopy::Open(const std::wstring& path, const std::wstring& folder,
                                             CopyRefusal& refusal) {
    WorkingCopy copy;
    refusal = CopyRefusal::Unreadable;
    copy.path_ = ObLib::WithLongPathPrefix(path);
    copy.file_.Reset(CreateFileW(copy.path_.c_str(), GENERIC_READ,
                                 FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                 FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (!copy.file_) return {};
    refusal = CopyRefusal::NotACopy;
    if (!IsRegular(copy.file_.Get(), copy.identity_)) return {};
    const auto temporary = TemporaryFolder();
    // The nearest folder above the file has to be one in the temporary path, and not that itself.
    if (!temporary || !IsBelow(copy.path_, *temporary, 1)) return {};
    if (!folder.empty()) {
        const auto given = IdentityOfFolder(folder);
        if (!given || !IsBelow(copy.path_, *given, 0)) return {};
    }
    refusal = CopyRefusal::None;
    return copy;
}

std::unique_ptr<NewFile> NewFile::MakeBeside(const WorkingCopy& copy, UnfinishedFiles& unfinished) {
    std::unique_ptr<NewFile> made(new NewFile(unfinished));
    made->path_ = copy.Folder() + NewName();
    made->file_.Reset(CreateFileW(made->path_.c_str(), GENERIC_READ | GENERIC_WRITE,
                                  FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!made->file_) {
        made->isPlaced_ = true; // there is nothing to delete
        return nullptr;
    }
    made->identity_ = IdentityOf(made->file_.Get()).value_or(FileIdentity());
    made->folder_ = copy.Folder();
    made->folderIdentity_ = IdentityOfFolder(made->folder_ + L'\\').value_or(FileIdentity());
    unfinished.Add(made->path_, made->identity_);
    return made;
}

// When the file can't be deleted now, the end of the session tries again.
NewFile::~NewFile() {
    if (isPlaced_) return;
    file_.Reset();
    ObLib::RanGuarded([this] {
        unfinished_.AddFolder(folder_, folderIdentity_);
        if (DeleteByIdentity(path_, identity_)) unfinished_.Remove(identity_);
    });
}

std::uint64_t NewFile::Size() const noexcept {
    LARGE_INTEGER size{};
    return GetFileSizeEx(file_.Get(), &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

bool NewFile::Prepare(WorkingCopy& copy) {
    BY_HANDLE_FILE_INFORMATION info;
    if (!GetFileInformationByHandle(copy.file_.Get(), &info)) return false;
    attributes_ = info.dwFileAttributes;
    SetFileTime(file_.Get(), &info.ftCreationTime, &info.ftLastAccessTime, &info.ftLastWriteTime);
    file_.Reset();
    copy.file_.Reset();
    // The system replaces no file that is protected against writing.
    if (attributes_ & FILE_ATTRIBUTE_READONLY) {
        SetFileAttributesW(copy.path_.c_str(), FILE_ATTRIBUTE_NORMAL);
    }
    return true;
}

// A copy that a clean-up deleted meanwhile isn't made again, and no other file in its place is
// replaced.
bool NewFile::Rename(const WorkingCopy& copy) {
    {
        const UniqueKernelHandle there(CreateFileW(copy.path_.c_str(), FILE_READ_ATTRIBUTES,
                                                   kShareAll, nullptr, OPEN_EXISTING,
                                                   FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
        if (!there) return false;
        if (IdentityOf(there.Get()) != copy.identity_) {
            SetLastError(ERROR_FILE_NOT_FOUND);
            return false;
        }
    }
    if (!MoveFileExW(path_.c_str(), copy.path_.c_str(), MOVEFILE_REPLACE_EXISTING)) return false;
    isPlaced_ = true;
    unfinished_.Remove(identity_);
    PutAttributesBack(copy);
    return true;
}

bool NewFile::IsBusy() noexcept {
    const DWORD error = GetLastError();
    return error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION ||
           error == ERROR_LOCK_VIOLATION;
}

void NewFile::PutAttributesBack(const WorkingCopy& copy) const noexcept {
    SetFileAttributesW(copy.path_.c_str(), attributes_);
}

} // namespace providers
