// A picker run with the shell's own file dialog.
#pragma once

#include <windows.h>

#include <shobjidl.h>

#include <string>
#include <vector>

#include "OBCore/planning/OBOpenFileNameDlg.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obcore {

// Makes a fresh shell dialog; COM is initialised on the thread.
HRESULT CreateShellDialog(ObLib::ComPtr<IFileOpenDialog>& dialog);

// An object on the driver's stack. The open-file-name road shows the dialog with it; the dialog
// road builds one only after its dialog was confirmed, to collect and process.
class Win7Dlg final : public OBOpenFileNameDlg {
public:
    // `end` is the end of the memory into which the request's texts point; nothing is read or
    // written behind it. Request and end are null on the dialog road.
    Win7Dlg(OPENFILENAMEW* request, const wchar_t* end, OBAttachJob& job)
        : OBOpenFileNameDlg(request, job), end_(end) {}

    // Open-file-name road only: the whole run, from the update check through the result in
    // lpstrFile. Ends with Deinit of the provider manager, also when there was no dialog.
    int ShowPickerDialog() override;

    // Appends the file-system paths of what was confirmed and notes the last of them; items without
    // such a path are left out. False only if the dialog gives no results.
    bool CollectPickedPaths(IFileOpenDialog& dialog, std::vector<std::wstring>& paths);

    std::wstring LastPickedPath;

private:
    HRESULT ShowDialog(IFileOpenDialog& dialog);
    int ConfirmRun(IFileOpenDialog& dialog);
    int WriteArchivePath();

    const wchar_t* end_;
};

} // namespace obcore
