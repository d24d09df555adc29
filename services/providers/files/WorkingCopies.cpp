#include "services/providers/files/WorkingCopies.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "ObLib/Src/AsciiLetters.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/LongPath.h"
#include "services/providers/files/FinalPath.h"
#include "services/providers/files/ResultName.h"

namespace providers {
namespace {

using ObLib::UniqueKernelHandle;

// Not what a link at the path leads to; folders too.
constexpr DWORD kTheFileItself = FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_BACKUP_SEMANTICS;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Empty when there is none above.
std::wstring FolderOf(const std::wstring& path) {
    const std::size_t end = path.rfind(L'\\');
    return end == std::wstring::npos ? std::wstring() : path.substr(0, end);
}

constexpr std::size_t kPrefixLength = ObLib::kLongPathPrefix.size();
constexpr std::size_t kDriveLength = kPrefixLength + 2; // a letter and a colon

// The length of the part that contains no names of folders; 0: not a full path with the prefix.
std::size_t RootLength(const std::wstring& path) {
    if (path.starts_with(ObLib::kLongSharePrefix)) return ObLib::kLongSharePrefix.size();
    const bool onDrive = path.starts_with(ObLib::kLongPathPrefix) && path.size() > kDriveLength &&
                         ObLib::IsAsciiLetter(path[kPrefixLength]) &&
                         path.compare(kPrefixLength + 1, 2, L":\\") == 0;
    return onDrive ? kDriveLength + 1 : 0;
}

bool IsName(const std::wstring& name) { return !name.empty() && name != L"." && name != L".."; }

// Whether the path consists of plain names only, without dots, forward slashes or streams, so that
// cutting off the last name gives the file's real folder.
bool IsPlain(const std::wstring& path) {
    const std::size_t root = RootLength(path);
    if (root == 0 || path.find_first_of(L"/:", root) != std::wstring::npos) return false;
    for (std::size_t start = root; start <= path.size();) {
        const std::size_t end = std::min(path.find(L'\\', start), path.size());
        if (!IsName(path.substr(start, end - start))) return false;
        start = end + 1;
    }
    return true;
}

// The callers make no working copies in a temporary folder whose path is longer than this, so that
// no file there may be changed.
std::optional<FileIdentity> TemporaryFolder() {
    wchar_t path[MAX_PATH + 1];
    const DWORD length = GetTempPathW(MAX_PATH + 1, path);
    if (length == 0 || length >= MAX_PATH - 1) return {};
    return IdentityOfFolder(path);
}

// Whether one of the folders above `path` is `folder`, and none between them a link; the nearest
// `skipped` of them don't count. The path is plain.
bool IsBelow(const std::wstring& path, const FileIdentity& folder, int skipped) {
    for (std::wstring above = FolderOf(path); above.size() >= kDriveLength;
         above = FolderOf(above)) {
        if (skipped <= 0 && IdentityOfFolder(above + L'\\') == folder) return true;
        if (IsLink(above)) return false;
        --skipped;
    }
    return false;
}

// Whether the file is where a working copy may be; `folder` as for WorkingCopy::Open.
bool IsInItsPlace(const std::wstring& path, const std::wstring& folder) {
    const auto temporary = TemporaryFolder();
    // The nearest folder above the file has to be one in the temporary path, and not that itself.
    if (!IsPlain(path) || !temporary || !IsBelow(path, *temporary, 1)) return false;
    if (folder.empty()) return true;
    const auto given = IdentityOfFolder(folder);
    return given && IsBelow(path, *given, 0);
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

// The attributes that a copy keeps; the others are the file system's own matter.
constexpr DWORD kKept = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                        FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

// Of the open file, whatever its path leads to by now. The file needs the right to write
// attributes.
bool SetAttributes(HANDLE file, DWORD attributes) noexcept {
    FILE_BASIC_INFO info{}; // zero: left as it is
    info.FileAttributes = (attributes & kKept) ? attributes & kKept : FILE_ATTRIBUTE_NORMAL;
    return SetFileInformationByHandle(file, FileBasicInfo, &info, sizeof info) != FALSE;
}

// Deletes an open file or an empty folder. The system deletes nothing that is read-only.
bool DeleteOpen(HANDLE file) noexcept {
    BY_HANDLE_FILE_INFORMATION info;
    if (GetFileInformationByHandle(file, &info) &&
        (info.dwFileAttributes & FILE_ATTRIBUTE_READONLY)) {
        SetAttributes(file, FILE_ATTRIBUTE_NORMAL);
    }
    FILE_DISPOSITION_INFO gone{TRUE};
    return SetFileInformationByHandle(file, FileDispositionInfo, &gone, sizeof gone) != FALSE;
}

// The folder, which can't be renamed or deleted while this is open. Empty when another one has its
// path by now.
UniqueKernelHandle Pin(const std::wstring& folder, const FileIdentity& identity) noexcept {
    UniqueKernelHandle pin(CreateFileW(folder.c_str(), FILE_LIST_DIRECTORY | FILE_READ_ATTRIBUTES,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                       kTheFileItself, nullptr));
    if (!pin || IdentityOf(pin.Get()) == identity) return pin;
    SetLastError(ERROR_PATH_NOT_FOUND);
    return {};
}

// A file or an empty folder. True also when it is no longer there, as when another one has its
// name.
bool DeleteByIdentity(const std::wstring& path, const FileIdentity& identity) noexcept {
    constexpr DWORD kNeeded = DELETE | FILE_READ_ATTRIBUTES;
    const auto open = [&](DWORD access) {
        return CreateFileW(path.c_str(), access, kShareAll, nullptr, OPEN_EXISTING, kTheFileItself,
                           nullptr);
    };
    // The right to change attributes is only for a file that is read-only.
    UniqueKernelHandle file(open(kNeeded | FILE_WRITE_ATTRIBUTES));
    if (!file && GetLastError() == ERROR_ACCESS_DENIED) file.Reset(open(kNeeded));
    if (!file) {
        const DWORD error = GetLastError();
        return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
    }
    if (IdentityOf(file.Get()) != identity) return true;
    return DeleteOpen(file.Get());
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

void UnfinishedFiles::AddFolderOf(const WorkingCopy& copy) {
    const std::wstring folder = copy.Folder();
    if (const auto identity = IdentityOfFolder(folder + L'\\')) AddFolder(folder, *identity);
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
    if (!IsPlain(copy.path_)) {
        refusal = CopyRefusal::NotACopy;
        return {};
    }
    copy.file_.Reset(CreateFileW(copy.path_.c_str(), GENERIC_READ,
                                 FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                 FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (!copy.file_) return {};
    refusal = CopyRefusal::NotACopy;
    if (!IsRegular(copy.file_.Get(), copy.identity_)) return {};
    if (!IsInItsPlace(copy.path_, folder)) return {};
    // Some file systems give no path for an open file.
    const std::wstring opened = FinalPath(copy.file_.Get());
    if (!opened.empty() && !IsInItsPlace(opened, folder)) return {};
    refusal = CopyRefusal::None;
    return copy;
}

std::unique_ptr<NewFile> NewFile::MakeBeside(const WorkingCopy& copy, UnfinishedFiles& unfinished) {
    std::unique_ptr<NewFile> made(new NewFile(unfinished));
    made->path_ = copy.Folder() + NewName();
    made->file_.Reset(CreateFileW(made->path_.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                                  FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!made->file_) {
        made->isPlaced_ = true; // there is nothing to delete
        return nullptr;
    }
    made->folder_ = copy.Folder();
    const auto identity = IdentityOf(made->file_.Get());
    const auto folder = IdentityOfFolder(made->folder_ + L'\\');
    if (!identity || !folder) {
        DeleteOpen(made->file_.Get());
        made->isPlaced_ = true;
        return nullptr;
    }
    made->identity_ = *identity;
    made->folderIdentity_ = *folder;
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
    SetAttributes(file_.Get(), attributes_);
    file_.Reset();
    copy.file_.Reset();
    return true;
}

// The system replaces no read-only file. False when the copy is no longer there, also when another
// file has its path.
bool NewFile::Protect(const WorkingCopy& copy, DWORD attributes) noexcept {
    const bool isProtected = (attributes_ & FILE_ATTRIBUTE_READONLY) != 0;
    const UniqueKernelHandle there(CreateFileW(
        copy.path_.c_str(), FILE_READ_ATTRIBUTES | (isProtected ? FILE_WRITE_ATTRIBUTES : 0),
        kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (!there) return false;
    if (IdentityOf(there.Get()) != copy.identity_) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return false;
    }
    return !isProtected || SetAttributes(there.Get(), attributes);
}

// A copy that a clean-up deleted meanwhile isn't made again, and no other file in its place is
// replaced. The folder is pinned, so that the path leads to the same folder in all steps. The
// system replaces no file that is open, so the handle that shows the copy's identity is closed
// before the step: a program of the same user could put another file there in between.
bool NewFile::Rename(const WorkingCopy& copy) {
    const UniqueKernelHandle folder = Pin(folder_, folderIdentity_);
    if (!folder || !Protect(copy, attributes_ & ~DWORD{FILE_ATTRIBUTE_READONLY})) return false;
    if (!MoveFileExW(path_.c_str(), copy.path_.c_str(), MOVEFILE_REPLACE_EXISTING)) return false;
    isPlaced_ = true;
    unfinished_.Remove(identity_);
    return true;
}

// As for Rename; the system itself refuses a name that is taken. A file that is named but whose
// copy is still there isn't placed: it is deleted with this object.
bool NewFile::NameBeside(const WorkingCopy& copy, const std::wstring& path,
                         const std::wstring& extension, std::size_t longest, std::wstring& result) {
    constexpr int kMostNumbers = 9999;
    const UniqueKernelHandle folder = Pin(folder_, folderIdentity_);
    if (!folder || !Protect(copy, attributes_)) return false;
    for (int number = 1; number <= kMostNumbers; ++number) {
        result = ResultPath(path, extension, number);
        isNameTooLong_ = result.size() > longest;
        if (isNameTooLong_) break;
        std::wstring target = folder_ + result.substr(result.rfind(L'\\'));
        // Noted under both names before it gets the new one, for which no memory is needed then.
        unfinished_.Add(target, identity_);
        if (MoveFileExW(path_.c_str(), target.c_str(), 0)) {
            path_.swap(target);
            return true;
        }
        const DWORD error = GetLastError();
        if (error != ERROR_ALREADY_EXISTS && error != ERROR_FILE_EXISTS) return false;
    }
    SetLastError(ERROR_FILE_EXISTS);
    return false;
}

bool NewFile::DeleteFileOf(const WorkingCopy& copy) noexcept {
    return DeleteByIdentity(copy.path_, copy.identity_);
}

bool NewFile::DeleteCopy(const WorkingCopy& copy) {
    if (!DeleteFileOf(copy)) return false;
    isPlaced_ = true;
    unfinished_.Remove(identity_);
    return true;
}

bool NewFile::IsBusy() noexcept {
    const DWORD error = GetLastError();
    return error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION ||
           error == ERROR_LOCK_VIOLATION;
}

void NewFile::PutAttributesBack(const WorkingCopy& copy) noexcept { Protect(copy, attributes_); }

} // namespace providers
