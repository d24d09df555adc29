// A recording fake of the shell's file dialog, which replaces the real one for a scope.
//
// A class object for CLSID_FileOpenDialog returns the fake, so that code under test creates
// it as it creates the real dialog. Every call is recorded among those of the fake sister
// modules, as dialog.Name(arguments): texts in double quotes, null as null, numbers decimal, the
// two option words as 0x1A40, an item as its path. dialog.destroyed() is the last release.
#pragma once

#include <windows.h>

#include <shobjidl.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/ComResources.h"

namespace obtest {

class RecordingFileDialog;

// What the dialogs of the scope answer. May be changed while a dialog is shown.
struct FileDialogScript {
    FILEOPENDIALOGOPTIONS options = 0; // what GetOptions gives until SetOptions has set them
    HRESULT showResult = S_OK;
    HWND window = nullptr;              // the dialog's own window
    std::vector<std::wstring> results;  // an empty text is an item without a file-system path
    std::vector<std::wstring> selected; // what is selected while the dialog is open
    bool written = true;                // whether calls are written down
    bool clearsLists = true;            // whether SetSelectedControlItem(list, 0) succeeds

    // Failing calls, by name: "Advise", "GetResults", "StartVisualGroup(102)",
    // "QueryInterface(IFileDialogCustomize)", "CoCreateInstance" and so on. A bracket names the
    // first argument.
    std::map<std::wstring, HRESULT> failures;

    // Plays the user: runs inside Show, with the events that the dialog was advised.
    std::function<void(RecordingFileDialog&)> onShow;
};

// One dialog. References: what CoCreateInstance gave, and one for each interface asked for.
class RecordingFileDialog final : public IFileOpenDialog,
                                  public IFileDialogCustomize,
                                  public IOleWindow {
public:
    explicit RecordingFileDialog(FileDialogScript& script) : script_(script) {}

    // Events as the shell plays them; each gives what the advised object answered, or E_UNEXPECTED
    // when nothing is advised.
    HRESULT ChooseItem(DWORD list, DWORD item);
    HRESULT Toggle(DWORD control, bool checked);
    HRESULT Select(std::vector<std::wstring> paths);
    HRESULT PressOk();

    FileDialogScript& Script() { return script_; }
    IFileDialogEvents* Events() { return events_.Get(); }
    IFileDialogControlEvents* ControlEvents() { return controlEvents_.Get(); }
    ULONG References() const { return references_; }

    // The selected item of a radio list; 0 for none.
    DWORD Selected(DWORD list) const;

    // IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override;

    // IModalWindow, IFileDialog, IFileOpenDialog
    HRESULT STDMETHODCALLTYPE Show(HWND owner) override;
    HRESULT STDMETHODCALLTYPE SetFileTypes(UINT count, const COMDLG_FILTERSPEC* types) override;
    HRESULT STDMETHODCALLTYPE SetFileTypeIndex(UINT) override;
    HRESULT STDMETHODCALLTYPE GetFileTypeIndex(UINT*) override;
    HRESULT STDMETHODCALLTYPE Advise(IFileDialogEvents* events, DWORD* cookie) override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override;
    HRESULT STDMETHODCALLTYPE SetOptions(FILEOPENDIALOGOPTIONS options) override;
    HRESULT STDMETHODCALLTYPE GetOptions(FILEOPENDIALOGOPTIONS* options) override;
    HRESULT STDMETHODCALLTYPE SetDefaultFolder(IShellItem*) override;
    HRESULT STDMETHODCALLTYPE SetFolder(IShellItem* folder) override;
    HRESULT STDMETHODCALLTYPE GetFolder(IShellItem**) override;
    HRESULT STDMETHODCALLTYPE GetCurrentSelection(IShellItem**) override;
    HRESULT STDMETHODCALLTYPE SetFileName(LPCWSTR) override;
    HRESULT STDMETHODCALLTYPE GetFileName(LPWSTR*) override;
    HRESULT STDMETHODCALLTYPE SetTitle(LPCWSTR) override;
    HRESULT STDMETHODCALLTYPE SetOkButtonLabel(LPCWSTR) override;
    HRESULT STDMETHODCALLTYPE SetFileNameLabel(LPCWSTR) override;
    HRESULT STDMETHODCALLTYPE GetResult(IShellItem**) override;
    HRESULT STDMETHODCALLTYPE AddPlace(IShellItem*, FDAP) override;
    HRESULT STDMETHODCALLTYPE SetDefaultExtension(LPCWSTR) override;
    HRESULT STDMETHODCALLTYPE Close(HRESULT) override;
    HRESULT STDMETHODCALLTYPE SetClientGuid(REFGUID) override;
    HRESULT STDMETHODCALLTYPE ClearClientData() override;
    HRESULT STDMETHODCALLTYPE SetFilter(IShellItemFilter*) override;
    HRESULT STDMETHODCALLTYPE GetResults(IShellItemArray** items) override;
    HRESULT STDMETHODCALLTYPE GetSelectedItems(IShellItemArray** items) override;

    // IFileDialogCustomize
    HRESULT STDMETHODCALLTYPE EnableOpenDropDown(DWORD) override;
    HRESULT STDMETHODCALLTYPE AddMenu(DWORD, LPCWSTR) override;
    HRESULT STDMETHODCALLTYPE AddPushButton(DWORD, LPCWSTR) override;
    HRESULT STDMETHODCALLTYPE AddComboBox(DWORD) override;
    HRESULT STDMETHODCALLTYPE AddRadioButtonList(DWORD control) override;
    HRESULT STDMETHODCALLTYPE AddCheckButton(DWORD control, LPCWSTR text, BOOL checked) override;
    HRESULT STDMETHODCALLTYPE AddEditBox(DWORD, LPCWSTR) override;
    HRESULT STDMETHODCALLTYPE AddSeparator(DWORD) override;
    HRESULT STDMETHODCALLTYPE AddText(DWORD, LPCWSTR) override;
    HRESULT STDMETHODCALLTYPE SetControlLabel(DWORD, LPCWSTR) override;
    HRESULT STDMETHODCALLTYPE GetControlState(DWORD, CDCONTROLSTATEF*) override;
    HRESULT STDMETHODCALLTYPE SetControlState(DWORD control, CDCONTROLSTATEF state) override;
    HRESULT STDMETHODCALLTYPE GetEditBoxText(DWORD, WCHAR**) override;
    HRESULT STDMETHODCALLTYPE SetEditBoxText(DWORD, LPCWSTR) override;
    HRESULT STDMETHODCALLTYPE GetCheckButtonState(DWORD, BOOL*) override;
    HRESULT STDMETHODCALLTYPE SetCheckButtonState(DWORD control, BOOL checked) override;
    HRESULT STDMETHODCALLTYPE AddControlItem(DWORD control, DWORD item, LPCWSTR text) override;
    HRESULT STDMETHODCALLTYPE RemoveControlItem(DWORD control, DWORD item) override;
    HRESULT STDMETHODCALLTYPE RemoveAllControlItems(DWORD) override;
    HRESULT STDMETHODCALLTYPE GetControlItemState(DWORD, DWORD, CDCONTROLSTATEF*) override;
    HRESULT STDMETHODCALLTYPE SetControlItemState(DWORD, DWORD, CDCONTROLSTATEF) override;
    HRESULT STDMETHODCALLTYPE GetSelectedControlItem(DWORD, DWORD*) override;
    HRESULT STDMETHODCALLTYPE SetSelectedControlItem(DWORD control, DWORD item) override;
    HRESULT STDMETHODCALLTYPE StartVisualGroup(DWORD control, LPCWSTR label) override;
    HRESULT STDMETHODCALLTYPE EndVisualGroup() override;
    HRESULT STDMETHODCALLTYPE MakeProminent(DWORD) override;
    HRESULT STDMETHODCALLTYPE SetControlItemText(DWORD, DWORD, LPCWSTR) override;

    // IOleWindow
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override;

private:
    HRESULT Answer(const wchar_t* call, const std::wstring& arguments = {});
    HRESULT GiveItems(const wchar_t* call, const std::vector<std::wstring>& paths,
                      IShellItemArray** items);

    FileDialogScript& script_;
    ULONG references_ = 1;
    FILEOPENDIALOGOPTIONS options_ = 0;
    bool optionsSet_ = false;
    std::map<DWORD, DWORD> selected_; // list to item
    ObLib::ComPtr<IFileDialogEvents> events_;
    ObLib::ComPtr<IFileDialogControlEvents> controlEvents_;
};

// Replaces the real dialog by the fake for a scope, on a thread that has COM initialised.
class FakeFileDialog {
public:
    FakeFileDialog();
    ~FakeFileDialog();
    FakeFileDialog(const FakeFileDialog&) = delete;
    FakeFileDialog& operator=(const FakeFileDialog&) = delete;

    FileDialogScript script;

    // A dialog without a driver, for tests of one step. The caller owns the reference.
    ObLib::ComPtr<RecordingFileDialog> Make();

    // The calls that were written down for dialogs, in order, without the prefix "dialog.".
    static std::vector<std::wstring> Calls();

    // Those of them that begin with one of these names (up to the opening bracket).
    static std::vector<std::wstring> CallsOf(const std::vector<std::wstring>& names);

    // Items and arrays that were handed out and not given back.
    static int LiveObjects();

    // The class object of a module of its own, which gives dialogs of `script`. The caller owns the
    // reference; `script` and the object last as long as the module.
    static HRESULT GiveClassObject(FileDialogScript& script, REFIID iid, void** object);

private:
    class Factory;
    std::unique_ptr<Factory> factory_;
    DWORD registration_ = 0;
};

} // namespace obtest
