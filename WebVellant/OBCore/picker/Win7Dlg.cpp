#include "OBCore/picker/Win7Dlg.h"

#include <algorithm>
#include <utility>

#include "OBCore/modules/TraceFailure.h"
#include "OBCore/picker/FileTypes.h"
#include "OBCore/picker/PickerSequence.h"
#include "OBCore/picker/ShellDialog.h"
#include "OBCore/picker/UpdateCheck.h"

namespace obcore {
namespace {

// Several files are always possible here; whether the page takes them is decided at OK.
constexpr FILEOPENDIALOGOPTIONS kOpenFileNameOptions =
    FOS_FORCEFILESYSTEM | FOS_ALLOWMULTISELECT | FOS_PATHMUSTEXIST | FOS_FILEMUSTEXIST;
static_assert(kOpenFileNameOptions == 0x1A40);

} // namespace

int Win7Dlg::ShowPickerDialog() {
    RunUpdateCheck(*Options, CurrentTime());
    PickerSequence sequence(*AttachRecord);
    ObLib::ComPtr<IFileOpenDialog> dialog;
    if (FAILED(CreateShellDialog(dialog))) return 0;
    TraceFailure("SetOptions", dialog->SetOptions(kOpenFileNameOptions));
    if (Request->lpstrFilter) {
        SetFileTypes(*dialog.Get(), ReadStringList(Request->lpstrFilter, end_));
    }
    const PickerRequest request{
        .owner = Request->hwndOwner,
        .allowMultiSelect = (Request->Flags & OFN_ALLOWMULTISELECT) != 0,
        .processesEmptyResults = true,
        .passesButtonLink = true,
    };
    PickerAnswer answer = sequence.Run(std::move(dialog), request, *this, LastPickedPath);
    LinkText = std::move(answer.linkText);
    return answer.hasFiles ? WriteFileList() : 0;
}

int Win7Dlg::WriteFileList() {
    if (AttachRecord->ResultIsArchive) return WriteArchivePath();
    return CompressUtils::FillOpenFileNameBuffer(*AttachRecord, *Request, end_);
}

int Win7Dlg::WriteArchivePath() {
    const std::wstring& path = AttachRecord->ResultPath;
    const std::size_t needed = path.size() + 2;
    if (Request->nMaxFile <= needed) return 0;
    // nMaxFile is the page's own number and may be larger than the room in the block.
    wchar_t* const slot = Request->lpstrFile;
    if (!slot || slot > end_ || static_cast<std::size_t>(end_ - slot) < needed) return 0;
    std::fill_n(std::copy(path.begin(), path.end(), slot), 2, L'\0');
    return 1;
}

} // namespace obcore
