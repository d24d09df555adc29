// The one place at which the manager writes, renames or deletes a file: working copies below the
// temporary path, and the new files that it makes beside them. No other code of the module opens a
// file of a run for writing, but for what suite/SuiteFolder makes in a folder of its own.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/files/FileIdentity.h"

namespace providers {

enum class CopyRefusal : std::uint8_t {
    None,
    NotACopy,   // not a file below a subfolder of the temporary path, a link, or with a second name
    Unreadable, // not there, or open elsewhere
};

class WorkingCopy;

// The files that a run began to write and that aren't whole. Locked: the thread that ends a session
// deletes what a call on another thread may still have.
class UnfinishedFiles {
public:
    void Add(const std::wstring& path, const FileIdentity& identity);
    void Remove(const FileIdentity& identity);

    // Deletes each that is still there, by its identity, and each of their folders that is empty
    // then. What can't be deleted stays noted.
    void DeleteAll() noexcept;

    // A folder that DeleteAll tries too, if it is that one: a file in it didn't become whole.
    void AddFolder(const std::wstring& path, const FileIdentity& identity);
    // The copy's folder: a clean-up couldn't delete it while the copy was open.
    void AddFolderOf(const WorkingCopy& copy);

private:
    struct File {
        std::wstring path;
        FileIdentity identity;
    };
    std::mutex lock_;
    std::vector<File> files_;
    std::vector<File> folders_;
};

// A working copy, open for reading. It stays open with delete sharing, so that a clean-up can
// delete it at any time.
class WorkingCopy {
public:
    // Opens the file if it is a regular file with one name, in a subfolder of the temporary path
    // and, when `folder` isn't empty, in that folder or below it, with no link in between. Folders
    // are compared by identity, so that short names and letter case make no difference.
    static std::optional<WorkingCopy> Open(const std::wstring& path, const std::wstring& folder,
                                           CopyRefusal& refusal);

    HANDLE Handle() const noexcept { return file_.Get(); }
    // With the prefix for long paths.
    const std::wstring& Path() const noexcept { return path_; }
    std::wstring Folder() const; // without a trailing backslash

private:
    friend class NewFile;
    WorkingCopy() = default;

    ObLib::UniqueKernelHandle file_;
    std::wstring path_;
    FileIdentity identity_;
};

// A new file beside a working copy, under a name of its own. Deleted with this object unless it
// took the copy's place or a name beside it.
class NewFile {
public:
    // Null when it can't be made. `unfinished` outlives the object.
    static std::unique_ptr<NewFile> MakeBeside(const WorkingCopy& copy,
                                               UnfinishedFiles& unfinished);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    HANDLE Handle() const noexcept { return file_.Get(); } // for writing
    std::uint64_t Size() const noexcept;

    // Puts the file in the place of the copy, with the copy's times and attributes, in one step.
    // Closes both. False when the copy is no longer there or the system refuses for two seconds;
    // the copy is then unchanged. `isEnded` is asked before the step and while the system refuses.
    template <class IsEnded>
    bool TakePlaceOf(WorkingCopy& copy, IsEnded isEnded) {
        if (!Prepare(copy)) return false;
        if (Repeat(isEnded, [&] { return Rename(copy); })) return true;
        PutAttributesBack(copy);
        return false;
    }

    // Gives the file the copy's name with another extension, numbered where there is a file of that
    // name already, and deletes the copy; `path` is the copy's and becomes the result's. The file
    // has the copy's times and attributes. Closes both. False, with the copy and `path` as they
    // were, when the copy is no longer there, no name of at most `longest` units is free, which
    // IsNameTooLong then reports, or the system refuses for two seconds. No file is ever replaced.
    // `isEnded` as above.
    template <class IsEnded>
    bool TakeNameBeside(WorkingCopy& copy, std::wstring& path, const std::wstring& extension,
                        std::size_t longest, IsEnded isEnded) {
        std::wstring result;
        const auto name = [&] { return NameBeside(copy, path, extension, longest, result); };
        if (!Prepare(copy) || !Repeat(isEnded, name)) return false;
        if (!Repeat(isEnded, [&] { return DeleteCopy(copy); })) return false;
        path = std::move(result);
        return true;
    }

    bool IsNameTooLong() const noexcept { return isNameTooLong_; }

    // Deletes a copy whose content another new file has. Closes it. True also when it is no longer
    // there. False when the system refuses for two seconds. `isEnded` as above.
    template <class IsEnded>
    static bool Delete(WorkingCopy& copy, IsEnded isEnded) {
        copy.file_.Reset();
        return Repeat(isEnded, [&] { return DeleteFileOf(copy); });
    }

private:
    static constexpr int kAttempts = 100;
    static constexpr DWORD kPause = 20; // milliseconds; a scanner has new files open for a while

    explicit NewFile(UnfinishedFiles& unfinished) : unfinished_(unfinished) {}
    // True once the step has succeeded. Repeats it while the system refuses.
    template <class IsEnded, class Step>
    static bool Repeat(IsEnded& isEnded, Step step) {
        for (int attempt = 0; attempt < kAttempts && !isEnded(); ++attempt) {
            if (step()) return true;
            if (!IsBusy()) break;
            Sleep(kPause);
        }
        return false;
    }
    bool Prepare(WorkingCopy& copy);
    bool NameBeside(const WorkingCopy& copy, const std::wstring& path,
                    const std::wstring& extension, std::size_t longest, std::wstring& result);
    bool DeleteCopy(const WorkingCopy& copy);
    static bool DeleteFileOf(const WorkingCopy& copy) noexcept;
    bool Rename(const WorkingCopy& copy);
    static bool IsBusy() noexcept;
    bool Protect(const WorkingCopy& copy, DWORD attributes) noexcept;
    void PutAttributesBack(const WorkingCopy& copy) noexcept;

    ObLib::UniqueKernelHandle file_;
    std::wstring path_;
    FileIdentity identity_;
    std::wstring folder_;
    FileIdentity folderIdentity_;
    DWORD attributes_ = FILE_ATTRIBUTE_NORMAL; // of the copy
    bool isPlaced_ = false;
    bool isNameTooLong_ = false; // of every result that is free
    UnfinishedFiles& unfinished_;
};

} // namespace providers
