#include "OBCore/picker/Win7DlgEvents.h"

#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ObTrace.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/TraceFailure.h"
#include "OBCore/picker/PickerControls.h"
#include "ObLib/Src/Win32/ComResources.h"
#include "ObLib/Src/Win32/Guarded.h"

using obcontract::kSelectLeaveOut;
using obcontract::kSelectUse;
using obcontract::ProviderKind;
using obcontract::ProviderManagerHandle;
using obcontract::TransformId;

namespace obcore {
namespace {

// An exception of a method's body ends here, since the shell can't be thrown through.
template <class Body>
HRESULT Guarded(HRESULT onException, Body body) noexcept {
    return ObLib::GuardedElse(body, [&] {
        ObTrace("Exception in a dialog event");
        return onException;
    });
}

template <class Interface>
ObLib::ComPtr<Interface> Query(IUnknown* object, REFIID iid) {
    ObLib::ComPtr<Interface> found;
    void** const out = reinterpret_cast<void**>(found.Put());
    if (object) TraceFailure("QueryInterface", object->QueryInterface(iid, out));
    return found;
}

// The dialog's own window, owner of what an event shows; null when it can't be had.
HWND WindowOf(IUnknown* object) {
    const auto window = Query<IOleWindow>(object, IID_IOleWindow);
    HWND handle = nullptr;
    if (window && FAILED(TraceFailure("GetWindow", window->GetWindow(&handle)))) return nullptr;
    return handle;
}

DWORD CountOf(IShellItemArray* items) {
    DWORD count = 0;
    if (!items || FAILED(TraceFailure("GetCount", items->GetCount(&count)))) return 0;
    return count;
}

DWORD SelectionCount(IFileOpenDialog& dialog) {
    ObLib::ComPtr<IShellItemArray> selected;
    const HRESULT result = dialog.GetSelectedItems(selected.Put());
    return SUCCEEDED(TraceFailure("GetSelectedItems", result)) ? CountOf(selected.Get()) : 0;
}

void SetTick(IFileDialogCustomize& customize, DWORD control, bool ticked) {
    TraceFailure("SetCheckButtonState",
                 customize.SetCheckButtonState(control, ticked ? TRUE : FALSE));
}

void Choose(OBOptions& options, bool sendItem, bool autoEncrypt) {
    options.SendItem = sendItem;
    options.AutoEncrypt = autoEncrypt;
}

// False for an item that is none of the three.
bool ApplyChoice(IFileDialogCustomize& customize, OBOptions& options, DWORD item) {
    switch (item) {
    case kZipChoice.item:
        Choose(options, true, false);
        ClearChoice(customize, kZipAndEncryptChoice);
        ClearChoice(customize, kNoZipChoice);
        return true;
    case kZipAndEncryptChoice.item:
        if (IsEncryptionRefused(WindowOf(&customize))) {
            // What was chosen before stays chosen, in the fields and on the screen.
            ClearChoice(customize, kZipAndEncryptChoice);
            return true;
        }
        Choose(options, false, true);
        ClearChoice(customize, kZipChoice);
        ClearChoice(customize, kNoZipChoice);
        return true;
    case kNoZipChoice.item:
        Choose(options, false, false);
        ClearChoice(customize, kZipChoice);
        ClearChoice(customize, kZipAndEncryptChoice);
        return true;
    default:
        return false;
    }
}

constexpr std::uint32_t Number(TransformId transform) {
    return static_cast<std::uint32_t>(transform);
}

// One tick of the user on its way to the provider manager.
class Toggle {
public:
    Toggle(Win7DlgEvents& events, IFileDialogCustomize& customize, HWND window)
        : job_(*events.AttachRecord), manager_(events.ProviderManager), customize_(customize),
          window_(window) {}

    void Run(const TransformControl& row, bool checked) {
        bool& field = job_.*row.field;
        field = checked;
        if (Enter(row, checked)) return;
        SetTick(customize_, row.control, false);
        field = false;
    }

    // Combining works on PDF files, so a tick on it brings the conversion along when that can be
    // used. The mode is "leave out", since the field of the conversion is still off at the call.
    void BringConversion() {
        if (!job_.AutoCombinePDFs || job_.AutoConvertPDF) return;
        if (!IsReady(TransformId::ConvertPdf)) return;
        if (!Select(kSelectLeaveOut, TransformId::ConvertPdf)) return;
        job_.AutoConvertPDF = true;
        SetTick(customize_, kConvertPdfCheck, true);
    }

private:
    bool Enter(const TransformControl& row, bool on) {
        if (on && row.needsReady && !IsReady(row.transform)) return false;
        if (on && !HasOptions(row.transform)) return false;
        // Leaving a transform out can fail too; its box then ends unticked all the same.
        return Select(on ? kSelectUse : kSelectLeaveOut, row.transform);
    }

    bool IsReady(TransformId transform) {
        return job_.ProviderManager &&
               obcore::ProviderManager().GetReadyForConvert(window_, manager_, Number(transform),
                                                            ProviderKind::Transform) != 0;
    }

    bool HasOptions(TransformId transform) {
        return obcore::ProviderManager().ShowProviderOptionsWhenNoOptionsSet(
                   manager_, Number(transform), ProviderKind::Transform, nullptr, window_) != 0;
    }

    bool Select(std::uint32_t mode, TransformId transform) {
        return obcore::ProviderManager().SelectProviders(manager_, mode, Number(transform),
                                                         ProviderKind::Transform) != 0;
    }

    OBAttachJob& job_;
    ProviderManagerHandle manager_;
    IFileDialogCustomize& customize_;
    HWND window_;
};

} // namespace

Win7DlgEvents::Win7DlgEvents(OBAttachJob& job, bool allowMultiSelect) noexcept
    : AttachRecord(&job), ProviderManager(job.OwnedProviderManager),
      AllowMultiSelect(allowMultiSelect) {}

HRESULT Win7DlgEvents::QueryInterface(REFIID iid, void** object) {
    if (!object) return E_POINTER;
    if (iid == IID_IFileDialogControlEvents || iid == IID_IUnknown) {
        *object = static_cast<IFileDialogControlEvents*>(this);
        return S_OK;
    }
    if (iid == IID_IFileDialogEvents) {
        *object = static_cast<IFileDialogEvents*>(this);
        return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

HRESULT Win7DlgEvents::OnItemSelected(IFileDialogCustomize* customize, DWORD, DWORD item) {
    return Guarded(S_OK, [&] {
        if (!ApplyChoice(*customize, *AttachRecord, item)) return S_OK;
        const auto dialog = Query<IFileOpenDialog>(customize, IID_IFileOpenDialog);
        const DWORD count = dialog ? SelectionCount(*dialog.Get()) : 0;
        UpdateTransformControls(customize, *AttachRecord, count);
        return S_OK;
    });
}

HRESULT Win7DlgEvents::OnButtonClicked(IFileDialogCustomize*, DWORD) { return S_OK; }

HRESULT Win7DlgEvents::OnCheckButtonToggled(IFileDialogCustomize* customize, DWORD control,
                                            BOOL checked) {
    return Guarded(S_OK, [&] {
        Toggle toggle(*this, *customize, WindowOf(customize));
        const TransformControl* const row = FindTransformControl(control);
        if (!row) return S_OK;
        toggle.Run(*row, checked != FALSE);
        if (control == kCombinePdfsCheck) toggle.BringConversion();
        return S_OK;
    });
}

HRESULT Win7DlgEvents::OnControlActivating(IFileDialogCustomize*, DWORD) { return S_OK; }

HRESULT Win7DlgEvents::OnFileOk(IFileDialog* dialog) {
    // The failing side is the refusal: a page that takes one file must not get several.
    return Guarded(S_FALSE, [&] {
        const auto open = Query<IFileOpenDialog>(dialog, IID_IFileOpenDialog);
        if (!open) return S_OK;
        ObLib::ComPtr<IShellItemArray> results;
        if (FAILED(TraceFailure("GetResults", open->GetResults(results.Put())))) return S_OK;
        const DWORD count = CountOf(results.Get());
        results.Reset();
        const bool zipped = AttachRecord->MakesZip();
        if (zipped || AllowMultiSelect || count == 1) return S_OK;
        ShowStringBox(WindowOf(dialog), TextId::OneFileOnly);
        return S_FALSE;
    });
}

HRESULT Win7DlgEvents::OnFolderChanging(IFileDialog*, IShellItem*) { return S_OK; }

HRESULT Win7DlgEvents::OnFolderChange(IFileDialog*) { return S_OK; }

HRESULT Win7DlgEvents::OnSelectionChange(IFileDialog* dialog) {
    return Guarded(S_OK, [&] {
        const auto open = Query<IFileOpenDialog>(dialog, IID_IFileOpenDialog);
        if (!open) return S_OK;
        const DWORD count = SelectionCount(*open.Get());
        const auto customize = Query<IFileDialogCustomize>(dialog, IID_IFileDialogCustomize);
        if (customize) UpdateTransformControls(customize.Get(), *AttachRecord, count);
        return S_OK;
    });
}

HRESULT Win7DlgEvents::OnShareViolation(IFileDialog*, IShellItem*, FDE_SHAREVIOLATION_RESPONSE*) {
    return S_OK;
}

HRESULT Win7DlgEvents::OnTypeChange(IFileDialog*) { return S_OK; }

HRESULT Win7DlgEvents::OnOverwrite(IFileDialog*, IShellItem*, FDE_OVERWRITE_RESPONSE*) {
    return S_OK;
}

AdvisedEvents::AdvisedEvents(IFileDialog& dialog, OBAttachJob& job, bool allowMultiSelect)
    : dialog_(dialog), events_(job, allowMultiSelect) {
    TraceFailure("Advise", dialog_.Advise(&events_, &cookie_));
}

AdvisedEvents::~AdvisedEvents() { TraceFailure("Unadvise", dialog_.Unadvise(cookie_)); }

} // namespace obcore
