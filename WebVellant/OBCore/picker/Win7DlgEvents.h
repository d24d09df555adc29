// What the shell dialog calls back while it is open.
#pragma once

#include <windows.h>

#include <shobjidl.h>

#include "OBCore/options/OBAttachJob.h"
#include "contracts/ProviderManager.h"

namespace obcore {

// Keeps the record and the picker's controls in step: a click on a choice changes the option fields
// at once, ticking a transform enters it at the provider manager at once, and the selection enables
// or disables the transforms. Nothing is read back from the controls afterwards, and nothing is
// saved: a choice is valid for this run only.
//
// Lives on the driver's stack for one Show and isn't counted. All calls come on the thread that
// called Show, within its modal loop. No exception leaves a method.
//
// The order of the bases and of the fields is fixed.
class Win7DlgEvents final : public IFileDialogControlEvents, public IFileDialogEvents {
public:
    // `allowMultiSelect` is the page's own wish; the dialog itself always allows several files.
    Win7DlgEvents(OBAttachJob& job, bool allowMultiSelect) noexcept;
    Win7DlgEvents(const Win7DlgEvents&) = delete;
    Win7DlgEvents& operator=(const Win7DlgEvents&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 0; }

    // IFileDialogControlEvents
    HRESULT STDMETHODCALLTYPE OnItemSelected(IFileDialogCustomize* customize, DWORD control,
                                             DWORD item) override;
    HRESULT STDMETHODCALLTYPE OnButtonClicked(IFileDialogCustomize*, DWORD) override;
    HRESULT STDMETHODCALLTYPE OnCheckButtonToggled(IFileDialogCustomize* customize, DWORD control,
                                                   BOOL checked) override;
    HRESULT STDMETHODCALLTYPE OnControlActivating(IFileDialogCustomize*, DWORD) override;

    // IFileDialogEvents. OnFileOk refuses, with a message, a selection of other than one file for a
    // page that takes one, unless one zip comes out of it: S_FALSE, and the dialog stays open.
    HRESULT STDMETHODCALLTYPE OnFileOk(IFileDialog* dialog) override;
    HRESULT STDMETHODCALLTYPE OnFolderChanging(IFileDialog*, IShellItem*) override;
    HRESULT STDMETHODCALLTYPE OnFolderChange(IFileDialog*) override;
    HRESULT STDMETHODCALLTYPE OnSelectionChange(IFileDialog* dialog) override;
    HRESULT STDMETHODCALLTYPE OnShareViolation(IFileDialog*, IShellItem*,
                                               FDE_SHAREVIOLATION_RESPONSE*) override;
    HRESULT STDMETHODCALLTYPE OnTypeChange(IFileDialog*) override;
    HRESULT STDMETHODCALLTYPE OnOverwrite(IFileDialog*, IShellItem*,
                                          FDE_OVERWRITE_RESPONSE*) override;

    OBAttachJob* AttachRecord;                         // not owned
    obcontract::ProviderManagerHandle ProviderManager; // the record's, not owned
    bool AllowMultiSelect;
};

// The events advised to a dialog for a scope; the destructor unadvises them before the event object
// ends.
class AdvisedEvents {
public:
    AdvisedEvents(IFileDialog& dialog, OBAttachJob& job, bool allowMultiSelect);
    AdvisedEvents(const AdvisedEvents&) = delete;
    AdvisedEvents& operator=(const AdvisedEvents&) = delete;
    ~AdvisedEvents();

private:
    IFileDialog& dialog_;
    Win7DlgEvents events_;
    DWORD cookie_ = 0;
};

} // namespace obcore
