#include "OBCore/picker/Win7Dlg.h"

#include <algorithm>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/picker/FileTypes.h"
#include "OBCore/picker/PickerControls.h"
#include "OBCore/picker/PickerHooks.h"
#include "OBCore/picker/UpdateCheck.h"
#include "OBCore/picker/Win7DlgEvents.h"
#include "ObLib/Src/Win32/ScopeExit.h"

namespace obcore {
namespace {

// Several files are always possible here; whether the page takes them is decided at OK.
constexpr FILEOPENDIALOGOPTIONS kOpenFileNameOptions =
    FOS_FORCEFILESYSTEM | FOS_ALLOWMULTISELECT | FOS_PATHMUSTEXIST | FOS_FILEMUSTEXIST;
static_assert(kOpenFileNameOptions == 0x1A40);

// Empty for an item that isn't in the file system.
std::wstring FileSystemPath(IShellItemArray& items, DWORD index) {
    ObLib::ComPtr<IShellItem> item;
    if (FAILED(items.GetItemAt(index, item.Put())) || !item) return {};
    ObLib::UniqueCoTaskMemory<wchar_t> path;
    if (FAILED(item->GetDisplayName(SIGDN_FILESYSPATH, path.Put())) || !path) return {};
    return path.Get();
}

} // namespace

HRESULT CreateShellDialog(ObLib::ComPtr<IFileOpenDialog>& dialog) {
    return CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER,
                            IID_IFileOpenDialog, reinterpret_cast<void**>(dialog.Put()));
}

int Win7Dlg::ShowPickerDialog() {
    RunUpdateCheck(*Options, CurrentTime());
    const ObLib::ScopeExit deinit(
        [this] { ProviderManager().Deinit(AttachRecord->OwnedProviderManager); });
    ObLib::ComPtr<IFileOpenDialog> dialog;
    if (FAILED(CreateShellDialog(dialog))) return 0;
    dialog->SetOptions(kOpenFileNameOptions);
    if (Request->lpstrFilter) {
        SetFileTypes(*dialog.Get(), ReadStringList(Request->lpstrFilter, end_));
    }
    const bool allowMultiSelect = (Request->Flags & OFN_ALLOWMULTISELECT) != 0;
    const AdvisedEvents events(*dialog.Get(), *AttachRecord, allowMultiSelect);
    AddPickerControls(*dialog.Get(), Request->hwndOwner, *AttachRecord);
    return SUCCEEDED(ShowDialog(*dialog.Get())) ? ConfirmRun(*dialog.Get()) : 0;
}

HRESULT Win7Dlg::ShowDialog(IFileOpenDialog& dialog) {
    PickerHooks hooks(AttachRecord->OwnedProviderManager);
    const HRESULT shown = dialog.Show(Request->hwndOwner);
    hooks.MoveLinkText(LinkText);
    return shown;
}

int Win7Dlg::ConfirmRun(IFileOpenDialog& dialog) {
    std::vector<std::wstring> picked;
    CollectPickedPaths(dialog, picked); // without results the pipeline gets an empty list
    if (ProcessPickedFiles(picked) == 0) return 0;
    if (AttachRecord->ResultIsArchive) return WriteArchivePath();
    return CompressUtils::FillOpenFileNameBuffer(*AttachRecord, *Request, end_);
}

int Win7Dlg::WriteArchivePath() {
    const std::wstring& path = AttachRecord->ResultPath;
    const std::size_t needed = path.size() + 2;
    if (Request->nMaxFile <= needed) return 0;
    // nMaxFile is the page's own number and may promise more than the block holds.
    wchar_t* const slot = Request->lpstrFile;
    if (!slot || slot > end_ || static_cast<std::size_t>(end_ - slot) < needed) return 0;
    std::fill_n(std::copy(path.begin(), path.end(), slot), 2, L'\0');
    return 1;
}

bool Win7Dlg::CollectPickedPaths(IFileOpenDialog& dialog, std::vector<std::wstring>& paths) {
    ObLib::ComPtr<IShellItemArray> items;
    if (FAILED(dialog.GetResults(items.Put()))) return false;
    DWORD count = 0;
    if (!items || FAILED(items->GetCount(&count))) return true;
    for (DWORD index = 0; index < count; ++index) {
        std::wstring path = FileSystemPath(*items.Get(), index);
        if (path.empty()) continue;
        LastPickedPath = path;
        paths.push_back(std::move(path));
    }
    return true;
}

} // namespace obcore
