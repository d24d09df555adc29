#include "services/providers/folder/FolderPick.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "ObLib/Src/Win32/Guarded.h"
#include "services/providers/files/FileIdentity.h"
#include "services/providers/folder/FolderLink.h"
#include "services/providers/folder/FolderPath.h"
#include "services/providers/folder/ReachableFolders.h"
#include "services/providers/folder/ShellItems.h"
#include "services/providers/folder/ShellThread.h"
#include "services/providers/storage/PickLimits.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

using ObLib::ComPtr;

// The folder's path with a backslash at its end, as in the paths of the files below it.
std::wstring StartOf(const std::wstring& folder) { return BelowFolder(folder, L""); }

bool StartsWith(const std::wstring& path, const std::wstring& start) {
    const int length = static_cast<int>(start.size());
    return path.size() > start.size() &&
           CompareStringOrdinal(path.c_str(), length, start.c_str(), length, TRUE) == CSTR_EQUAL;
}

// The accounts' folders, each of which is opened once at most: one that doesn't respond takes long.
class Identities {
public:
    explicit Identities(std::span<const PickableFolder> folders) : folders_(folders) {}

    // Nothing for a folder that can't be reached or has no identity of its own.
    const std::optional<FileIdentity>& Of(std::size_t index) {
        if (known_.empty()) {
            for (const PickableFolder& folder : folders_) {
                const auto identity = IdentityOfFolder(folder.settings.folder);
                known_.push_back(identity && identity->file != 0 ? identity : std::nullopt);
            }
        }
        return known_[index];
    }

private:
    std::span<const PickableFolder> folders_;
    std::vector<std::optional<FileIdentity>> known_;
};

// A file below one of the folders.
struct FoundFile {
    std::size_t folder = 0;
    std::wstring below; // its path there
};

// By the names in its path: the innermost folder.
std::optional<FoundFile> FindByName(const std::wstring& path,
                                    std::span<const PickableFolder> folders) {
    std::optional<FoundFile> found;
    for (std::size_t index = 0; index < folders.size(); ++index) {
        const std::wstring start = StartOf(folders[index].settings.folder);
        if (!StartsWith(path, start)) continue;
        std::wstring below = path.substr(start.size());
        if (!found || below.size() < found->below.size()) found = {index, std::move(below)};
    }
    return found;
}

// By the folders around it, from the innermost one: a drive's letter may lead to a share.
std::optional<FoundFile> FindByIdentity(const std::wstring& path, std::size_t count,
                                        Identities& identities) {
    for (std::size_t slash = path.find_last_of(L'\\'); slash != std::wstring::npos && slash > 1;
         slash = path.find_last_of(L'\\', slash - 1)) {
        const auto around = IdentityOfFolder(path.substr(0, slash + 1));
        for (std::size_t index = 0; around && index < count; ++index) {
            if (identities.Of(index) == around) return FoundFile{index, path.substr(slash + 1)};
        }
    }
    return {};
}

std::optional<PickedFile> FileAt(const std::wstring& path, std::span<const PickableFolder> folders,
                                 Identities& identities) {
    auto found = FindByName(path, folders);
    if (!found) found = FindByIdentity(path, folders.size(), identities);
    if (!found) return {};
    const PickableFolder& folder = folders[found->folder];
    return PickedFile{folder.account, FileNameOf(path),
                      LinkOf(folder.settings.folder, folder.settings.pattern, found->below)};
}

// Asks about the selection while the dialog is open; S_FALSE keeps it open. Lives on the stack for
// one Show and isn't counted. All calls come on the thread that called Show.
class PickEvents final : public IFileDialogEvents {
public:
    PickEvents(std::span<const PickableFolder> folders, const std::wstring& displayName)
        : folders_(folders), displayName_(displayName) {}

    std::vector<PickedFile>& Files() { return files_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const bool isKnown = iid == IID_IUnknown || iid == IID_IFileDialogEvents;
        *object = isKnown ? this : nullptr;
        return isKnown ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 0; }

    HRESULT STDMETHODCALLTYPE OnFileOk(IFileDialog* dialog) override {
        return ObLib::Guarded(S_FALSE, [&] { return Take(*dialog) ? S_OK : S_FALSE; });
    }
    HRESULT STDMETHODCALLTYPE OnFolderChanging(IFileDialog*, IShellItem*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnFolderChange(IFileDialog*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnSelectionChange(IFileDialog*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnShareViolation(IFileDialog*, IShellItem*,
                                               FDE_SHAREVIOLATION_RESPONSE*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE OnTypeChange(IFileDialog*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnOverwrite(IFileDialog*, IShellItem*,
                                          FDE_OVERWRITE_RESPONSE*) override {
        return E_NOTIMPL;
    }

private:
    bool Take(IFileDialog& dialog) {
        ComPtr<IFileOpenDialog> open;
        dialog.QueryInterface(IID_IFileOpenDialog, reinterpret_cast<void**>(open.Put()));
        if (!open) return false;
        PickedPaths picked = LinksOf(ChosenPaths(*open.Get()), folders_, displayName_);
        files_ = std::move(picked.files);
        if (!picked.sentence.empty()) ShowSentence(WindowOf(dialog), picked.sentence);
        return !files_.empty();
    }
    static HWND WindowOf(IFileDialog& dialog) {
        ComPtr<IOleWindow> window;
        HWND handle = nullptr;
        dialog.QueryInterface(IID_IOleWindow, reinterpret_cast<void**>(window.Put()));
        return window && SUCCEEDED(window->GetWindow(&handle)) ? handle : nullptr;
    }

    std::span<const PickableFolder> folders_;
    const std::wstring& displayName_;
    std::vector<PickedFile> files_;
};

// The folders that respond, as the shell knows them; empty for those that don't. Nothing else is
// asked for: a dead one would delay the dialog.
std::vector<ComPtr<IShellItem>> ReachableItems(std::span<const PickableFolder> folders) {
    std::vector<std::wstring> paths;
    for (const PickableFolder& folder : folders) paths.push_back(folder.settings.folder);
    const std::vector<bool> areThere = ReachableFolders(paths);
    std::vector<ComPtr<IShellItem>> items(folders.size());
    for (std::size_t index = 0; index < paths.size(); ++index) {
        if (areThere[index]) items[index] = ShellItemAt(paths[index]);
    }
    return items;
}

void Prepare(IFileOpenDialog& dialog, std::span<const ComPtr<IShellItem>> items,
             IShellItem& first) {
    FILEOPENDIALOGOPTIONS options = 0;
    dialog.GetOptions(&options);
    dialog.SetOptions(options | FOS_ALLOWMULTISELECT | FOS_FILEMUSTEXIST | FOS_FORCEFILESYSTEM |
                      FOS_NOCHANGEDIR | FOS_NODEREFERENCELINKS | FOS_DONTADDTORECENT);
    dialog.SetTitle(OwnText(OB_TEXT_FOLDER_PICK_TITLE).c_str());
    dialog.SetOkButtonLabel(OwnText(OB_TEXT_FOLDER_PICK_OK).c_str());
    dialog.SetFolder(&first);
    // The other accounts, at the side where there is one.
    for (const ComPtr<IShellItem>& item : items) {
        if (item && items.size() > 1) dialog.AddPlace(item.Get(), FDAP_TOP);
    }
}

PickResult Failed() { return {{}, OwnText(OB_TEXT_PICK_FAILED)}; }

// The folder to begin in: the first one, or another one that can be reached; null for none.
IShellItem* BeginIn(std::span<const ComPtr<IShellItem>> items, std::size_t first) {
    if (items[first]) return items[first].Get();
    const auto other =
        std::ranges::find_if(items, [](const ComPtr<IShellItem>& item) { return bool{item}; });
    return other != items.end() ? other->Get() : nullptr;
}

PickResult Pick(HWND owner, std::span<const PickableFolder> folders, std::size_t first,
                const std::wstring& displayName) {
    const auto dialog = MakeOpenDialog();
    if (!dialog) return Failed();
    const auto items = ReachableItems(folders);
    IShellItem* const folder = BeginIn(items, first);
    if (!folder) {
        return {{}, FormatOwnText(OB_TEXT_FOLDER_NOT_THERE, {folders[first].settings.folder})};
    }
    Prepare(*dialog.Get(), items, *folder);
    PickEvents events(folders, displayName);
    DWORD cookie = 0;
    if (FAILED(dialog->Advise(&events, &cookie))) return Failed();
    const HRESULT shown = dialog->Show(owner);
    dialog->Unadvise(cookie);
    if (shown == HRESULT_FROM_WIN32(ERROR_CANCELLED)) return {};
    return SUCCEEDED(shown) ? PickResult{std::move(events.Files()), {}} : Failed();
}

} // namespace

PickedPaths LinksOf(const std::vector<std::wstring>& paths, std::span<const PickableFolder> folders,
                    const std::wstring& displayName) {
    PickedPaths picked;
    Identities identities(folders);
    for (const std::wstring& path : paths) {
        auto file = FileAt(path, folders, identities);
        if (!file) return {{}, FormatOwnText(OB_TEXT_FOLDER_PICK_OUTSIDE, {FileNameOf(path)})};
        if (file->link.size() > kLongestLink || !FitsLinkText({&*file, 1}, displayName)) {
            return {{}, FormatOwnText(OB_TEXT_FOLDER_PICK_LONG, {file->name})};
        }
        picked.files.push_back(std::move(*file));
    }
    if (!FitsLinkText(picked.files, displayName)) {
        return {{}, OwnText(OB_TEXT_PICK_TOO_MANY)};
    }
    return picked;
}

PickResult PickFromFolders(HWND owner, std::span<const PickableFolder> folders, std::size_t first,
                           const std::wstring& displayName) {
    PickResult result;
    const bool hasRun =
        RunOnShellThread(owner, [&] { result = Pick(owner, folders, first, displayName); });
    return hasRun ? result : Failed();
}

} // namespace providers
