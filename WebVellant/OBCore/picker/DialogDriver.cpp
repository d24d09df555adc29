#include <windows.h>

#include <shlobj.h>
#include <shlwapi.h>

#include <string>
#include <utility>
#include <vector>

#include "OBCore/exchange/ExchangeAnswer.h"
#include "OBCore/exchange/PickedFiles.h"
#include "OBCore/modules/OwnModule.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/picker/AttachmentSetup.h"
#include "OBCore/picker/Drivers.h"
#include "OBCore/picker/FileTypes.h"
#include "OBCore/picker/PickerControls.h"
#include "OBCore/picker/PickerHooks.h"
#include "OBCore/picker/Win7Dlg.h"
#include "OBCore/picker/Win7DlgEvents.h"
#include "ObLib/Src/Win32/ScopeExit.h"

using obcontract::ExchangeBlock;

namespace obcore {
namespace {

constexpr int kAllFilesCapacity = 2048; // wide characters
constexpr HRESULT kCancelled = HRESULT_FROM_WIN32(ERROR_CANCELLED);

// Last file of the last run on this road in this process; where the next dialog opens.
std::wstring LastFolderPath;

// What a run on this road has come to.
struct Outcome {
    HRESULT result;
    std::wstring linkText;
    std::vector<std::wstring> files;
};

// Null without a folder: the dialog then opens in the folder of its own choice.
ObLib::ComPtr<IShellItem> StartFolder() {
    wchar_t folder[kPathCapacity] = {};
    LastFolderPath.copy(folder, kPathCapacity - 1);
    PathRemoveFileSpecW(folder);
    ObLib::ComPtr<IShellItem> item;
    if (folder[0] != L'\0') {
        SHCreateItemFromParsingName(folder, nullptr, IID_IShellItem,
                                    reinterpret_cast<void**>(item.Put()));
    }
    return item;
}

HRESULT ShowDialog(IFileOpenDialog& dialog, HWND owner, OBAttachJob& job, std::wstring& linkText) {
    PickerHooks hooks(job.OwnedProviderManager);
    const ObLib::ComPtr<IShellItem> folder = StartFolder();
    dialog.SetFolder(folder.Get());
    const HRESULT shown = dialog.Show(owner);
    hooks.MoveLinkText(linkText);
    return shown;
}

// S_OK of the dialog becomes a cancel when there is nothing to hand to the page.
HRESULT ProcessConfirmed(Win7Dlg& picker, IFileOpenDialog& dialog, OBAttachJob& job,
                         Outcome& outcome) {
    std::vector<std::wstring> picked;
    if (!picker.CollectPickedPaths(dialog, picked)) return kCancelled;
    if (picker.ProcessPickedFiles(picked) == 0 || !outcome.linkText.empty()) return kCancelled;
    outcome.files = job.ResultIsArchive ? std::vector<std::wstring>{job.ResultPath} : job.Files;
    return outcome.result;
}

Outcome RunDialog(IFileOpenDialog& dialog, HWND owner, OBAttachJob& job) {
    Outcome outcome;
    outcome.result = ShowDialog(dialog, owner, job, outcome.linkText);
    if (FAILED(outcome.result)) return outcome;
    Win7Dlg picker(nullptr, nullptr, job);
    outcome.result = ProcessConfirmed(picker, dialog, job, outcome);
    outcome.linkText = std::move(picker.LinkText);
    LastFolderPath = std::move(picker.LastPickedPath);
    return outcome;
}

// A negative result without a link leaves the block's status as it is.
void WriteAnswer(ExchangeBlock& block, const Outcome& outcome) {
    if (!outcome.linkText.empty()) {
        WriteLinkAnswer(block, outcome.linkText);
    } else if (SUCCEEDED(outcome.result)) {
        WriteDialogAnswer(block, outcome.files);
    }
}

HRESULT RunSequence(IFileOpenDialog& dialog, HWND owner, OBAttachJob& job, ExchangeBlock& block) {
    Results().clear();
    const ObLib::ScopeExit deinit([&job] { ProviderManager().Deinit(job.OwnedProviderManager); });
    FILEOPENDIALOGOPTIONS options = 0;
    dialog.GetOptions(&options);
    const bool allowMultiSelect = (options & FOS_ALLOWMULTISELECT) != 0;
    dialog.SetOptions(options | FOS_ALLOWMULTISELECT);
    const AdvisedEvents events(dialog, job, allowMultiSelect);
    AddPickerControls(dialog, owner, job);
    const Outcome outcome = RunDialog(dialog, owner, job);
    WriteAnswer(block, outcome);
    return outcome.result;
}

} // namespace

HRESULT DialogDriver(HWND owner, ExchangeBlock& block) {
    ObLib::ComPtr<IFileOpenDialog> created;
    const HRESULT creation = CreateShellDialog(created);
    if (FAILED(creation)) return creation;
    // Never released: the process ends right after the run, and the shell's threads may still use
    // the dialog until then.
    IFileOpenDialog& dialog = *created.Release();

    AttachmentSetup setup(owner, false);
    OBAttachJob& job = setup.Job();
    BindResourceModule();
    SetFileTypes(dialog, {LoadText(TextId::AllFiles, kAllFilesCapacity), L"*.*"});
    dialog.SetOptions(block.DialogOptions);
    const HRESULT result = RunSequence(dialog, owner, job, block);
    WriteCleanupNames(block, job.CleanupFolder.c_str(), job.CleanupFile.c_str());
    return result;
}

} // namespace obcore
