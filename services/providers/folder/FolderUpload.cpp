#include "services/providers/folder/FolderUpload.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "ObLib/Src/Win32/LongPath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/folder/BreakableCalls.h"
#include "services/providers/folder/FolderCheck.h"
#include "services/providers/folder/FolderCopy.h"
#include "services/providers/folder/FolderError.h"
#include "services/providers/folder/FolderFile.h"
#include "services/providers/folder/FolderLink.h"
#include "services/providers/folder/FolderPath.h"
#include "services/providers/folder/FolderRename.h"
#include "services/providers/folder/MadeFolders.h"
#include "services/providers/folder/PartFile.h"
#include "services/providers/folder/RepeatedStep.h"
#include "services/providers/storage/PickLimits.h"
#include "services/providers/storage/ProviderIds.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/worker/Event.h"

namespace providers {
namespace {

using ObLib::UniqueKernelHandle;
using ObLib::WithLongPathPrefix;

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

class FolderUpload {
public:
    FolderUpload(const FolderSettings& account, const UploadFile& file, UploadProgress& progress,
                 const FolderUploadCare& care)
        : account_(account), file_(file), progress_(progress), care_(care),
          calls_(progress.Cancelled()) {}

    UploadResult Run() {
        CheckNames();
        OpenSource();
        CheckRoom();
        MakeFolders();
        CheckName();
        return Store();
    }

private:
    // Where a file of this name is, below the account's folder and as a whole.
    std::wstring Below(const std::wstring& name) const {
        return file_.folder.empty() ? name : file_.folder + L'\\' + name;
    }
    std::wstring PathOf(const std::wstring& name) const {
        return WithLongPathPrefix(BelowFolder(account_.folder, Below(name)));
    }
    // The same as the text that a deletion needs.
    std::wstring PlaceText(const std::wstring& name) const {
        return TextOf(FolderPlace{account_.folder, Below(name), folders_.Count()});
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
        if (IsSet(progress_.Cancelled())) throw Stopped{UploadEnd::Cancelled};
    }

    // Each part of the folder has to be a name, so that the file is stored below the account's
    // folder and nowhere else.
    void CheckNames() const {
        bool areNames = IsFileName(file_.name);
        for (const std::wstring& part : PartsOf(file_.folder)) {
            areNames = areNames && IsFileName(part);
        }
        if (!areNames) Stop(OB_TEXT_FOLDER_NAME);
        if (LinkOf(account_.folder, account_.pattern, Below(file_.name)).size() > kLongestLink) {
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
        const std::wstring target = PathOf(file_.name);
        if (calls_.Run([&] { return GetFileAttributesW(target.c_str()); }) !=
            INVALID_FILE_ATTRIBUTES) {
            throw Stopped{UploadEnd::NameTaken};
        }
    }

    UploadResult Store() {
        const std::wstring name = PartName();
        if (name.empty()) StopWith(ERROR_OUTOFMEMORY);
        std::optional<PartNote> note;
        if (care_.notes) {
            note.emplace(*care_.notes,
                         NotedPart{kNetworkFolderId, care_.accountKey, PlaceText(name)});
        }
        PartFile part(PathOf(name), note ? &*note : nullptr);
        if (const DWORD error = part.Make(calls_)) StopWith(error);
        Copy(part);
        part.Close();
        std::wstring version;
        Repeat([&] { return !(version = VersionAt(part.Path())).empty(); });
        StopIfCancelled();
        // Made before the file has its name, after which nothing may fail.
        UploadResult done{
            UploadEnd::Done, {PlaceText(file_.name), file_.name, version, total_}, {}};
        Name(part, version);
        folders_.Keep();
        return done;
    }

    void Copy(PartFile& part) {
        FolderCopy copy(source_.Get(), total_, part, calls_, progress_, care_.patience);
        const CopyEnd end = copy.Run();
        switch (end.fault) {
        case CopyFault::None:
            return;
        case CopyFault::Cancelled:
            throw Stopped{UploadEnd::Cancelled};
        case CopyFault::Source:
            StopAtSource();
        case CopyFault::Target:
            StopWith(end.error);
        case CopyFault::Length:
            Stop(OB_TEXT_FOLDER_INCOMPLETE);
        }
    }

    void Name(PartFile& part, const std::wstring& version) {
        const RenameEnd end = RenamePart(part.Path(), PathOf(file_.name), version,
                                         progress_.Cancelled(), care_.patience);
        switch (end.fault) {
        case RenameFault::None:
            return part.SetNamed();
        case RenameFault::Taken:
            throw Stopped{UploadEnd::NameTaken};
        case RenameFault::Failed:
            StopWith(end.error);
        case RenameFault::Unknown:
            Stop(OB_TEXT_FOLDER_MAY_BE_THERE);
        }
    }

    const FolderSettings& account_;
    const UploadFile& file_;
    UploadProgress& progress_;
    const FolderUploadCare& care_;
    BreakableCalls calls_;
    UniqueKernelHandle source_;
    std::uint64_t total_ = 0; // bytes
    MadeFolders folders_;
};

} // namespace

UploadResult UploadToFolder(const FolderSettings& account, const UploadFile& file,
                            UploadProgress& progress, const FolderUploadCare& care) {
    try {
        return FolderUpload(account, file, progress, care).Run();
    } catch (const Stopped& stopped) {
        return {stopped.end, {}, stopped.sentence};
    }
}

} // namespace providers
