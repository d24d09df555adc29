#include <windows.h>

#include <shlobj.h>
#include <shlwapi.h>

#include <string>
#include <utility>

#include "OBCore/exchange/ExchangeAnswer.h"
#include "OBCore/exchange/PickedFiles.h"
#include "OBCore/modules/OwnModule.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/TraceFailure.h"
#include "OBCore/picker/AttachmentSetup.h"
#include "OBCore/picker/Drivers.h"
#include "OBCore/picker/FileTypes.h"
#include "OBCore/picker/PickerSequence.h"
#include "OBCore/picker/ShellDialog.h"
#include "OBCore/picker/Win7Dlg.h"
#include "contracts/ExchangeBlock.h"

using obcontract::ExchangeBlock;

namespace obcore {
namespace {

constexpr int kAllFilesCapacity = 2048; // wide characters
using obcontract::kCancelled;

// The last file of the last confirmed run in this process. The next dialog opens in its folder.
std::wstring LastFolderPath;

// Null without a folder: the dialog then opens in the folder of its own choice.
ObLib::ComPtr<IShellItem> StartFolder() {
    wchar_t folder[kPathCapacity] = {};
    LastFolderPath.copy(folder, kPathCapacity - 1);
    PathRemoveFileSpecW(folder);
    ObLib::ComPtr<IShellItem> item;
    if (folder[0] != L'\0') {
        TraceFailure("SHCreateItemFromParsingName",
                     SHCreateItemFromParsingName(folder, nullptr, IID_IShellItem,
                                                 reinterpret_cast<void**>(item.Put())));
    }
    return item;
}

// Whether the page's own dialog allowed several files. From here on this one always does.
bool AllowSeveralFiles(IFileOpenDialog& dialog) {
    FILEOPENDIALOGOPTIONS options = 0;
    TraceFailure("GetOptions", dialog.GetOptions(&options));
    TraceFailure("SetOptions", dialog.SetOptions(options | FOS_ALLOWMULTISELECT));
    return (options & FOS_ALLOWMULTISELECT) != 0;
}

// A confirmed dialog becomes a cancel when there is nothing to hand to the page.
HRESULT ResultOf(const PickerAnswer& answer) {
    return SUCCEEDED(answer.shown) && !answer.hasFiles ? kCancelled : answer.shown;
}

// A negative result without a link leaves the block's status as it is.
void WriteAnswer(ExchangeBlock& block, const PickerAnswer& answer) {
    if (!answer.linkText.empty()) {
        WriteLinkAnswer(block, answer.linkText);
    } else if (SUCCEEDED(ResultOf(answer))) {
        WriteDialogAnswer(block, answer.files);
    }
}

HRESULT RunPicker(ObLib::ComPtr<IFileOpenDialog> dialog, HWND owner, OBAttachJob& job,
                  ExchangeBlock& block) {
    Results().clear();
    PickerSequence sequence(job);
    const ObLib::ComPtr<IShellItem> folder = StartFolder();
    PickerRequest request{.owner = owner, .setsFolder = true, .folder = folder.Get()};
    request.allowMultiSelect = AllowSeveralFiles(*dialog.Get());
    Win7Dlg run(nullptr, nullptr, job);
    const PickerAnswer answer = sequence.Run(std::move(dialog), request, run, run.LastPickedPath);
    if (SUCCEEDED(answer.shown)) LastFolderPath = std::move(run.LastPickedPath);
    WriteAnswer(block, answer);
    return ResultOf(answer);
}

} // namespace

HRESULT DialogDriver(HWND owner, ExchangeBlock& block) {
    ObLib::ComPtr<IFileOpenDialog> dialog;
    const HRESULT creation = CreateShellDialog(dialog);
    if (FAILED(creation)) return creation;
    // This reference is never released: the process ends right after the run, and the shell's
    // threads may use the dialog until then.
    dialog->AddRef();

    AttachmentSetup setup(owner, false);
    OBAttachJob& job = setup.Job();
    BindResourceModule();
    SetFileTypes(*dialog.Get(), {LoadText(TextId::AllFiles, kAllFilesCapacity), L"*.*"});
    TraceFailure("SetOptions", dialog->SetOptions(block.DialogOptions));
    const HRESULT result = RunPicker(std::move(dialog), owner, job, block);
    WriteCleanupNames(block, job.CleanupFolder.c_str(), job.CleanupFile.c_str());
    return result;
}

} // namespace obcore
