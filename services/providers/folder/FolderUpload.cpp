#include "services/providers/folder/FolderUpload.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "ObLib/Src/Win32/LongPath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/folder/BreakableCalls.h"
#include "services/providers/folder/FolderCheck.h"
#include "services/providers/folder/FolderError.h"
#include "services/providers/folder/FolderFile.h"
#include "services/providers/folder/FolderLink.h"
#include "services/providers/folder/FolderPath.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

using ObLib::UniqueKernelHandle;
using ObLib::WithLongPathPrefix;

constexpr DWORD kBlock = 1 << 20; // bytes

// How the upload ends before its time. What was made so far is removed on the way.
struct Stopped {
    UploadEnd end;
    std::wstring sentence = {};
};

bool IsThere(DWORD error) { return error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS; }

// What backslashes separate; nothing of an empty path.
std::vector<std::wstring> PartsOf(const std::wstring& path) {
    std::vector<std::wstring> parts;
    for (std::size_t at = 0; !path.empty() && at <= path.size();) {
        const std::size_t end = std::min(path.find(L'\\', at), path.size());
        parts.push_back(path.substr(at, end - at));
        at = end + 1;
    }
    return parts;
}

// Repeats a step while another program, such as a scanner or a sync client, has the new file open.
template <class Step>
bool Repeat(Step step) {
    constexpr int kAttempts = 100;
    constexpr DWORD kPause = 20; // milliseconds
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (step()) return true;
        const DWORD error = GetLastError();
        if (error != ERROR_SHARING_VIOLATION && error != ERROR_ACCESS_DENIED) return false;
        Sleep(kPause);
        SetLastError(error);
    }
    return false;
}

// The folders that the upload made; those that are empty are removed with this object.
class MadeFolders {
public:
    MadeFolders() = default;
    ~MadeFolders() { RemoveEmptyFolders(inside_, count_); }
    MadeFolders(const MadeFolders&) = delete;
    MadeFolders& operator=(const MadeFolders&) = delete;

    void Add(const std::wstring& folder) {
        inside_ = folder + L"\\";
        ++count_;
    }
    unsigned Count() const noexcept { return count_; }
    // They stay.
    void Keep() noexcept { count_ = 0; }

private:
    std::wstring inside_;
    unsigned count_ = 0;
};

// The file under its temporary name; deleted with this object unless it got its own name.
class PartFile {
public:
    explicit PartFile(std::wstring path) : path_(std::move(path)) {}
    ~PartFile() {
        if (!isMade_) return;
        file_.Reset();
        Repeat([this] { return DeleteFileW(path_.c_str()) != FALSE; });
    }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    const std::wstring& Path() const noexcept { return path_; }
    HANDLE Handle() const noexcept { return file_.Get(); }
    bool Make(BreakableCalls& calls) {
        file_ = calls.Run([this] {
            return UniqueKernelHandle(
                CreateFileW(path_.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                            FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
        });
        return isMade_ = static_cast<bool>(file_);
    }
    void Close() noexcept { file_.Reset(); }
    void SetNamed() noexcept { isMade_ = false; }

private:
    std::wstring path_;
    UniqueKernelHandle file_;
    bool isMade_ = false;
};

class FolderUpload {
public:
    FolderUpload(const FolderSettings& account, const UploadFile& file, UploadProgress& progress)
        : account_(account), file_(file), progress_(progress), calls_(progress.Cancelled()) {}

    UploadResult Run() {
        CheckNames();
        OpenSource();
        CheckRoom();
        MakeFolders();
        CheckName();
        return Store();
    }

private:
    std::wstring Below() const {
        return file_.folder.empty() ? file_.name : file_.folder + L'\\' + file_.name;
    }
    std::wstring Target() const {
        return WithLongPathPrefix(BelowFolder(account_.folder, Below()));
    }
    std::wstring TargetFolder() const {
        return file_.folder.empty() ? account_.folder : BelowFolder(account_.folder, file_.folder);
    }

    [[noreturn]] void Stop(UINT text) const {
        throw Stopped{UploadEnd::Failed, FormatOwnText(text, {file_.name, account_.folder})};
    }
    // A call that was broken off by the cancel isn't a failure.
    [[noreturn]] void StopWith(DWORD error) const {
        StopIfCancelled();
        throw Stopped{UploadEnd::Failed, UploadSentence(error, file_.name, account_.folder)};
    }
    [[noreturn]] void StopAtSource() const {
        StopIfCancelled();
        Stop(OB_TEXT_FOLDER_SOURCE);
    }
    void StopIfCancelled() const {
        if (WaitForSingleObject(progress_.Cancelled(), 0) == WAIT_OBJECT_0) {
            throw Stopped{UploadEnd::Cancelled};
        }
    }

    // Each part of the folder has to be a name, so that the file is stored below the account's
    // folder and nowhere else.
    void CheckNames() const {
        bool areNames = IsFileName(file_.name);
        for (const std::wstring& part : PartsOf(file_.folder)) {
            areNames = areNames && IsFileName(part);
        }
        if (!areNames) Stop(OB_TEXT_FOLDER_NAME);
        if (LinkOf(account_.folder, account_.pattern, Below()).size() > kLongestLink) {
            Stop(OB_TEXT_FOLDER_LINK_TOO_LONG);
        }
    }

    void OpenSource() {
        source_ = calls_.Run([this] {
            return UniqueKernelHandle(CreateFileW(WithLongPathPrefix(file_.localPath).c_str(),
                                                  GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                                  nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN,
                                                  nullptr));
        });
        LARGE_INTEGER size{};
        if (!source_ || !GetFileSizeEx(source_.Get(), &size)) StopAtSource();
        total_ = static_cast<std::uint64_t>(size.QuadPart);
        progress_.Show(0, total_);
    }

    // Before gigabytes are copied in vain. A folder that reports no space is tried.
    void CheckRoom() {
        ULARGE_INTEGER free{};
        const DWORD attributes = calls_.Run(
            [this] { return GetFileAttributesW(WithLongPathPrefix(account_.folder).c_str()); });
        if (attributes == INVALID_FILE_ATTRIBUTES) StopWith(GetLastError());
        if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) StopWith(ERROR_DIRECTORY);
        const std::wstring folder = BelowFolder(account_.folder, L"");
        if (calls_.Run(
                [&] { return GetDiskFreeSpaceExW(folder.c_str(), &free, nullptr, nullptr); }) &&
            free.QuadPart < total_) {
            StopWith(ERROR_DISK_FULL);
        }
        const auto largest = calls_.Run([this] { return LargestFileIn(account_.folder); });
        if (largest && *largest < total_) StopWith(ERROR_FILE_TOO_LARGE);
    }

    void MakeFolders() {
        std::wstring made = account_.folder;
        for (const std::wstring& part : PartsOf(file_.folder)) {
            StopIfCancelled();
            made = BelowFolder(made, part);
            MakeFolder(made);
        }
    }
    void MakeFolder(const std::wstring& folder) {
        const std::wstring path = WithLongPathPrefix(folder);
        if (calls_.Run([&] { return CreateDirectoryW(path.c_str(), nullptr); })) {
            folders_.Add(folder);
        } else if (!IsThere(GetLastError())) {
            StopWith(GetLastError());
        }
    }

    // The rename refuses a name that is taken, too; this spares the copy.
    void CheckName() {
        const std::wstring target = Target();
        if (calls_.Run([&] { return GetFileAttributesW(target.c_str()); }) !=
            INVALID_FILE_ATTRIBUTES) {
            throw Stopped{UploadEnd::NameTaken};
        }
    }

    UploadResult Store() {
        const std::wstring path = PartPath(TargetFolder());
        if (path.empty()) StopWith(ERROR_OUTOFMEMORY);
        PartFile part(path);
        if (!part.Make(calls_)) StopWith(GetLastError());
        Copy(part);
        part.Close();
        std::wstring version;
        Repeat([&] { return !(version = VersionAt(part.Path())).empty(); });
        StopIfCancelled();
        // Made before the file has its name, after which nothing may fail.
        const FolderPlace place{account_.folder, Below(), folders_.Count()};
        UploadResult done{UploadEnd::Done, {TextOf(place), file_.name, version, total_}, {}};
        Name(part, version);
        folders_.Keep();
        return done;
    }

    void Copy(PartFile& part) {
        const auto block = std::make_unique_for_overwrite<char[]>(kBlock);
        std::uint64_t sent = 0;
        while (const DWORD size = Read(block.get())) {
            Write(part.Handle(), block.get(), size);
            sent += size;
            progress_.Show(sent, total_);
        }
        if (!calls_.Run([&] { return FlushFileBuffers(part.Handle()); })) StopWith(GetLastError());
        LARGE_INTEGER stored{};
        if (!GetFileSizeEx(part.Handle(), &stored)) StopWith(GetLastError());
        if (sent != total_ || static_cast<std::uint64_t>(stored.QuadPart) != total_) {
            Stop(OB_TEXT_FOLDER_INCOMPLETE);
        }
    }
    DWORD Read(char* block) {
        StopIfCancelled();
        DWORD size = 0;
        const bool isRead = calls_.Run(
            [&] { return ReadFile(source_.Get(), block, kBlock, &size, nullptr) != FALSE; });
        if (!isRead) StopAtSource();
        return size;
    }
    void Write(HANDLE target, const char* block, DWORD size) {
        DWORD written = 0;
        const bool isWritten =
            calls_.Run([&] { return WriteFile(target, block, size, &written, nullptr) != FALSE; });
        if (!isWritten) StopWith(GetLastError());
        if (written != size) StopWith(ERROR_DISK_FULL);
    }

    // Not broken off: whether the file has its name has to be known.
    void Name(PartFile& part, const std::wstring& version) {
        const std::wstring target = Target();
        const bool isNamed =
            Repeat([&] { return MoveFileExW(part.Path().c_str(), target.c_str(), 0) != FALSE; });
        const DWORD error = GetLastError();
        if (isNamed || HasName(target, version, error)) return part.SetNamed();
        if (IsThere(error)) throw Stopped{UploadEnd::NameTaken};
        StopWith(error);
    }

    // The connection may break after the server has done it; then the server is asked for a while.
    bool HasName(const std::wstring& target, const std::wstring& version, DWORD error) const {
        constexpr ULONGLONG kPatience = 20'000; // milliseconds, as the pause
        constexpr DWORD kPause = 250;
        if (version.empty()) return false;
        for (const ULONGLONG start = GetTickCount64();;) {
            const std::wstring found = VersionAt(target);
            if (!found.empty() || FolderErrorOf(error) != FolderError::Unreachable) {
                return found == version;
            }
            const bool isKnownToLack =
                GetFileAttributesW(target.c_str()) == INVALID_FILE_ATTRIBUTES &&
                GetLastError() == ERROR_FILE_NOT_FOUND;
            if (isKnownToLack || GetTickCount64() - start >= kPatience ||
                WaitForSingleObject(progress_.Cancelled(), kPause) == WAIT_OBJECT_0) {
                return false;
            }
        }
    }

    const FolderSettings& account_;
    const UploadFile& file_;
    UploadProgress& progress_;
    BreakableCalls calls_;
    UniqueKernelHandle source_;
    std::uint64_t total_ = 0; // bytes
    MadeFolders folders_;
};

} // namespace

UploadResult UploadToFolder(const FolderSettings& account, const UploadFile& file,
                            UploadProgress& progress) {
    try {
        return FolderUpload(account, file, progress).Run();
    } catch (const Stopped& stopped) {
        return {stopped.end, {}, stopped.sentence};
    }
}

} // namespace providers
