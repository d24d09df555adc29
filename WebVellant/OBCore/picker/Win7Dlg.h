// A picker run with the shell's own file dialog.
#pragma once

#include <windows.h>

#include <string>

#include "OBCore/planning/OBOpenFileNameDlg.h"

namespace obcore {

// An object on the driver's stack. The open-file-name driver shows the dialog with it; the dialog
// driver only processes with it what was confirmed.
class Win7Dlg final : public OBOpenFileNameDlg {
public:
    // `end` is the end of the memory into which the request's texts point; nothing is read or
    // written from there on. The dialog driver passes null for both.
    Win7Dlg(OPENFILENAMEW* request, const wchar_t* end, OBAttachJob& job)
        : OBOpenFileNameDlg(request, job), end_(end) {}

    // Open-file-name entry point only: the whole run, from the update check to the result in
    // lpstrFile. Ends with Deinit of the provider manager, also when there was no dialog.
    int ShowPickerDialog() override;

    std::wstring LastPickedPath; // of the last item that was collected

private:
    int WriteFileList();
    int WriteArchivePath();

    const wchar_t* end_;
};

} // namespace obcore
