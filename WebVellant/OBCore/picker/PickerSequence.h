// What both entry points do with their shell dialog: advise the events, add the controls, install
// the hooks, show, collect what was picked, process it, and at the end release what was used.
#pragma once

#include <windows.h>

#include <shobjidl.h>

#include <optional>
#include <string>
#include <vector>

#include "OBCore/options/OBAttachJob.h"
#include "OBCore/picker/Win7DlgEvents.h"
#include "OBCore/planning/OBOpenFileNameDlg.h"
#include "ObLib/Src/Win32/ComResources.h"

namespace obcore {

// In what the two entry points differ.
struct PickerRequest {
    HWND owner = nullptr;
    bool allowMultiSelect = false; // what the page allows; the dialog always allows several files

    // Dialog entry point: the folder in which the dialog opens; null leaves it to the dialog.
    bool setsFolder = false;
    IShellItem* folder = nullptr;

    // Open-file-name entry point: a confirmed dialog without results is processed as an empty list,
    // and a link text of the cloud button is passed to the pipeline. The dialog entry point treats
    // both as a cancel.
    bool processesEmptyResults = false;
    bool passesButtonLink = false;
};

struct PickerAnswer {
    HRESULT shown = E_FAIL;          // what Show returned; after a failure there are no files
    bool hasFiles = false;           // the pipeline has succeeded, and `files` go to the page
    std::vector<std::wstring> files; // full paths: the zip alone, or the files of the record
    std::wstring linkText;           // not empty: the page receives this text and no file
};

// One run, on the host's main thread. The driver writes the answer while the sequence is alive: its
// destructor unadvises the events, releases the dialog and calls Deinit of the provider manager, in
// this order, also when there was no dialog or an exception passes.
class PickerSequence {
public:
    explicit PickerSequence(OBAttachJob& job) noexcept : job_(job) {}
    PickerSequence(const PickerSequence&) = delete;
    PickerSequence& operator=(const PickerSequence&) = delete;
    ~PickerSequence();

    // Called once; takes the reference on the dialog. `run` processes what was picked, and
    // `lastPicked` receives the last of these paths.
    PickerAnswer Run(ObLib::ComPtr<IFileOpenDialog> dialog, const PickerRequest& request,
                     OBOpenFileNameDlg& run, std::wstring& lastPicked);

private:
    void Show(const PickerRequest& request, PickerAnswer& answer);
    void ProcessConfirmed(const PickerRequest& request, OBOpenFileNameDlg& run,
                          std::wstring& lastPicked, PickerAnswer& answer);

    OBAttachJob& job_;
    ObLib::ComPtr<IFileOpenDialog> dialog_;
    std::optional<AdvisedEvents> events_; // after the dialog, at which the events are advised
};

} // namespace obcore
