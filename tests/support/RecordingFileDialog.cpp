#include "tests/support/RecordingFileDialog.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "tests/fakes/Recording.h"
#include "tests/support/FakeModules.h"

namespace obtest {
namespace {

int liveObjects = 0;

std::wstring Number(std::uint64_t number) { return std::to_wstring(number); }

std::wstring Hex(DWORD number) {
    wchar_t text[16];
    _snwprintf(text, 16, L"0x%lX", number);
    return text;
}

// What the shell's items and arrays share: counting, and one interface.
template <class Interface>
class CountedObject : public Interface {
public:
    CountedObject() { ++liveObjects; }
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const bool known = iid == __uuidof(Interface) || iid == IID_IUnknown;
        *object = known ? static_cast<Interface*>(this) : nullptr;
        if (!known) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            --liveObjects;
            delete this;
        }
        return left;
    }

protected:
    virtual ~CountedObject() = default;

private:
    ULONG references_ = 1;
};

class FileItem final : public CountedObject<IShellItem> {
public:
    explicit FileItem(std::wstring path) : path_(std::move(path)) {}
    HRESULT STDMETHODCALLTYPE GetDisplayName(SIGDN form, LPWSTR* name) override {
        *name = nullptr;
        if (form != SIGDN_FILESYSPATH || path_.empty()) return E_INVALIDARG;
        const std::size_t bytes = (path_.size() + 1) * sizeof(wchar_t);
        *name = static_cast<wchar_t*>(CoTaskMemAlloc(bytes));
        memcpy(*name, path_.c_str(), bytes);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE BindToHandler(IBindCtx*, REFGUID, REFIID, void**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetParent(IShellItem**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetAttributes(SFGAOF, SFGAOF*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Compare(IShellItem*, SICHINTF, int*) override { return E_NOTIMPL; }

private:
    std::wstring path_;
};

class FileItems final : public CountedObject<IShellItemArray> {
public:
    explicit FileItems(std::vector<std::wstring> paths) : paths_(std::move(paths)) {}
    HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) override {
        *count = static_cast<DWORD>(paths_.size());
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetItemAt(DWORD index, IShellItem** item) override {
        *item = index < paths_.size() ? new FileItem(paths_[index]) : nullptr;
        return *item ? S_OK : E_FAIL;
    }
    HRESULT STDMETHODCALLTYPE BindToHandler(IBindCtx*, REFGUID, REFIID, void**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetPropertyStore(GETPROPERTYSTOREFLAGS, REFIID, void**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetPropertyDescriptionList(REFPROPERTYKEY, REFIID, void**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetAttributes(SIATTRIBFLAGS, SFGAOF, SFGAOF*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE EnumItems(IEnumShellItems**) override { return E_NOTIMPL; }

private:
    std::vector<std::wstring> paths_;
};

std::wstring PathOf(IShellItem* item) {
    wchar_t* path = nullptr;
    if (!item || FAILED(item->GetDisplayName(SIGDN_FILESYSPATH, &path))) return Quoted(nullptr);
    const std::wstring quoted = Quoted(path);
    CoTaskMemFree(path);
    return quoted;
}

} // namespace

// Writes the call down and answers S_OK, or the failure that the script has for it.
HRESULT RecordingFileDialog::Answer(const wchar_t* call, const std::wstring& arguments) {
    if (script_.written) RecordCall(std::wstring(L"dialog.") + call + L"(" + arguments + L")");
    const std::wstring first = arguments.substr(0, arguments.find(L','));
    for (const std::wstring& key : {std::wstring(call), call + (L"(" + first + L")")}) {
        const auto failure = script_.failures.find(key);
        if (failure != script_.failures.end()) return failure->second;
    }
    return S_OK;
}

HRESULT RecordingFileDialog::QueryInterface(REFIID iid, void** object) {
    *object = nullptr;
    const wchar_t* name = L"other";
    if (iid == IID_IUnknown || iid == IID_IModalWindow || iid == IID_IFileDialog ||
        iid == IID_IFileOpenDialog) {
        name = L"IFileOpenDialog";
        *object = static_cast<IFileOpenDialog*>(this);
    } else if (iid == IID_IFileDialogCustomize) {
        name = L"IFileDialogCustomize";
        *object = static_cast<IFileDialogCustomize*>(this);
    } else if (iid == IID_IOleWindow) {
        name = L"IOleWindow";
        *object = static_cast<IOleWindow*>(this);
    }
    if (!*object) return E_NOINTERFACE;
    // Asking is no operation of the dialog, so it isn't written down; it can fail all the same.
    const auto failure = script_.failures.find(L"QueryInterface(" + std::wstring(name) + L")");
    if (failure != script_.failures.end()) {
        *object = nullptr;
        return failure->second;
    }
    AddRef();
    return S_OK;
}

ULONG RecordingFileDialog::Release() {
    const ULONG left = --references_;
    if (left == 0) {
        if (script_.written) RecordCall(L"dialog.destroyed()");
        delete this;
    }
    return left;
}

HRESULT RecordingFileDialog::Show(HWND owner) {
    const HRESULT failed = Answer(L"Show", WindowText(owner));
    if (FAILED(failed)) return failed;
    // As the shell's does: its own window is the first dialog of Show, before any message box.
    const ObLib::UniqueWindow window(CreateWindowExW(0, L"#32770", nullptr, WS_POPUP, 0, 0, 0, 0,
                                                     nullptr, nullptr, nullptr, nullptr));
    if (script_.onShow) script_.onShow(*this);
    return script_.showResult;
}

HRESULT RecordingFileDialog::SetFileTypes(UINT count, const COMDLG_FILTERSPEC* types) {
    std::wstring arguments = Number(count);
    for (UINT index = 0; index < count; ++index) {
        arguments += L", " + Quoted(types[index].pszName) + L", " + Quoted(types[index].pszSpec);
    }
    return Answer(L"SetFileTypes", arguments);
}

// As the shell does: the control events are asked from what was advised.
HRESULT RecordingFileDialog::Advise(IFileDialogEvents* events, DWORD* cookie) {
    const HRESULT answer = Answer(L"Advise");
    if (FAILED(answer)) return answer;
    events->AddRef();
    events_.Reset(events);
    events->QueryInterface(IID_IFileDialogControlEvents,
                           reinterpret_cast<void**>(controlEvents_.Put()));
    *cookie = 42;
    return answer;
}

HRESULT RecordingFileDialog::Unadvise(DWORD cookie) {
    events_.Reset();
    controlEvents_.Reset();
    return Answer(L"Unadvise", Number(cookie));
}

HRESULT RecordingFileDialog::SetOptions(FILEOPENDIALOGOPTIONS options) {
    options_ = options;
    optionsSet_ = true;
    return Answer(L"SetOptions", Hex(options));
}

HRESULT RecordingFileDialog::GetOptions(FILEOPENDIALOGOPTIONS* options) {
    *options = optionsSet_ ? options_ : script_.options;
    return Answer(L"GetOptions");
}

HRESULT RecordingFileDialog::SetFolder(IShellItem* folder) {
    return Answer(L"SetFolder", PathOf(folder));
}

HRESULT RecordingFileDialog::GiveItems(const wchar_t* call, const std::vector<std::wstring>& paths,
                                       IShellItemArray** items) {
    *items = nullptr;
    const HRESULT answer = Answer(call);
    if (SUCCEEDED(answer)) *items = new FileItems(paths);
    return answer;
}

HRESULT RecordingFileDialog::GetResults(IShellItemArray** items) {
    return GiveItems(L"GetResults", script_.results, items);
}

HRESULT RecordingFileDialog::GetSelectedItems(IShellItemArray** items) {
    return GiveItems(L"GetSelectedItems", script_.selected, items);
}

HRESULT RecordingFileDialog::AddRadioButtonList(DWORD control) {
    return Answer(L"AddRadioButtonList", Number(control));
}

HRESULT RecordingFileDialog::AddCheckButton(DWORD control, LPCWSTR text, BOOL checked) {
    return Answer(L"AddCheckButton",
                  Number(control) + L", " + Quoted(text) + L", " + Number(checked != FALSE));
}

HRESULT RecordingFileDialog::SetControlState(DWORD control, CDCONTROLSTATEF state) {
    return Answer(L"SetControlState", Number(control) + L", " + Number(state));
}

HRESULT RecordingFileDialog::SetCheckButtonState(DWORD control, BOOL checked) {
    return Answer(L"SetCheckButtonState", Number(control) + L", " + Number(checked != FALSE));
}

HRESULT RecordingFileDialog::AddControlItem(DWORD control, DWORD item, LPCWSTR text) {
    return Answer(L"AddControlItem", Number(control) + L", " + Number(item) + L", " + Quoted(text));
}

HRESULT RecordingFileDialog::RemoveControlItem(DWORD control, DWORD item) {
    return Answer(L"RemoveControlItem", Number(control) + L", " + Number(item));
}

HRESULT RecordingFileDialog::SetSelectedControlItem(DWORD control, DWORD item) {
    const HRESULT answer =
        Answer(L"SetSelectedControlItem", Number(control) + L", " + Number(item));
    if (FAILED(answer)) return answer;
    if (item == 0 && !script_.clearsLists) return E_INVALIDARG;
    selected_[control] = item;
    return answer;
}

DWORD RecordingFileDialog::Selected(DWORD list) const {
    const auto selected = selected_.find(list);
    return selected == selected_.end() ? 0 : selected->second;
}

HRESULT RecordingFileDialog::StartVisualGroup(DWORD control, LPCWSTR label) {
    return Answer(L"StartVisualGroup", Number(control) + L", " + Quoted(label));
}

HRESULT RecordingFileDialog::EndVisualGroup() { return Answer(L"EndVisualGroup"); }

// Not written down: which window a message gets is seen from the message.
HRESULT RecordingFileDialog::GetWindow(HWND* window) {
    *window = script_.window;
    const auto failure = script_.failures.find(L"GetWindow");
    return failure == script_.failures.end() ? S_OK : failure->second;
}

HRESULT RecordingFileDialog::ChooseItem(DWORD list, DWORD item) {
    selected_[list] = item;
    return controlEvents_ ? controlEvents_->OnItemSelected(this, list, item) : E_UNEXPECTED;
}

HRESULT RecordingFileDialog::Toggle(DWORD control, bool checked) {
    return controlEvents_ ? controlEvents_->OnCheckButtonToggled(this, control, checked)
                          : E_UNEXPECTED;
}

HRESULT RecordingFileDialog::Select(std::vector<std::wstring> paths) {
    script_.selected = std::move(paths);
    return events_ ? events_->OnSelectionChange(this) : E_UNEXPECTED;
}

HRESULT RecordingFileDialog::PressOk() { return events_ ? events_->OnFileOk(this) : E_UNEXPECTED; }

// Operations that nobody is expected to use: a call shows up among the recorded ones.
#define OB_UNEXPECTED(name, ...)                                                                   \
    HRESULT RecordingFileDialog::name(__VA_ARGS__) {                                               \
        RecordCall(L"dialog.unexpected " L## #name L"()");                                         \
        return E_NOTIMPL;                                                                          \
    }
OB_UNEXPECTED(SetFileTypeIndex, UINT)
OB_UNEXPECTED(GetFileTypeIndex, UINT*)
OB_UNEXPECTED(SetDefaultFolder, IShellItem*)
OB_UNEXPECTED(GetFolder, IShellItem**)
OB_UNEXPECTED(GetCurrentSelection, IShellItem**)
OB_UNEXPECTED(SetFileName, LPCWSTR)
OB_UNEXPECTED(GetFileName, LPWSTR*)
OB_UNEXPECTED(SetTitle, LPCWSTR)
OB_UNEXPECTED(SetOkButtonLabel, LPCWSTR)
OB_UNEXPECTED(SetFileNameLabel, LPCWSTR)
OB_UNEXPECTED(GetResult, IShellItem**)
OB_UNEXPECTED(AddPlace, IShellItem*, FDAP)
OB_UNEXPECTED(SetDefaultExtension, LPCWSTR)
OB_UNEXPECTED(Close, HRESULT)
OB_UNEXPECTED(SetClientGuid, REFGUID)
OB_UNEXPECTED(ClearClientData)
OB_UNEXPECTED(SetFilter, IShellItemFilter*)
OB_UNEXPECTED(EnableOpenDropDown, DWORD)
OB_UNEXPECTED(AddMenu, DWORD, LPCWSTR)
OB_UNEXPECTED(AddPushButton, DWORD, LPCWSTR)
OB_UNEXPECTED(AddComboBox, DWORD)
OB_UNEXPECTED(AddEditBox, DWORD, LPCWSTR)
OB_UNEXPECTED(AddSeparator, DWORD)
OB_UNEXPECTED(AddText, DWORD, LPCWSTR)
OB_UNEXPECTED(SetControlLabel, DWORD, LPCWSTR)
OB_UNEXPECTED(GetControlState, DWORD, CDCONTROLSTATEF*)
OB_UNEXPECTED(GetEditBoxText, DWORD, WCHAR**)
OB_UNEXPECTED(SetEditBoxText, DWORD, LPCWSTR)
OB_UNEXPECTED(GetCheckButtonState, DWORD, BOOL*)
OB_UNEXPECTED(RemoveAllControlItems, DWORD)
OB_UNEXPECTED(GetControlItemState, DWORD, DWORD, CDCONTROLSTATEF*)
OB_UNEXPECTED(SetControlItemState, DWORD, DWORD, CDCONTROLSTATEF)
OB_UNEXPECTED(GetSelectedControlItem, DWORD, DWORD*)
OB_UNEXPECTED(MakeProminent, DWORD)
OB_UNEXPECTED(SetControlItemText, DWORD, DWORD, LPCWSTR)
OB_UNEXPECTED(ContextSensitiveHelp, BOOL)
#undef OB_UNEXPECTED

// Lives as long as its owner; COM's references on it don't count.
class FakeFileDialog::Factory final : public IClassFactory {
public:
    explicit Factory(FileDialogScript& script) : script_(script) {}
    virtual ~Factory() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const bool known = iid == IID_IUnknown || iid == IID_IClassFactory;
        *object = known ? static_cast<IClassFactory*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
        *object = nullptr;
        const auto failure = script_.failures.find(L"CoCreateInstance");
        if (failure != script_.failures.end()) return failure->second;
        if (script_.written) RecordCall(L"dialog.created()");
        const ObLib::ComPtr<RecordingFileDialog> dialog(new RecordingFileDialog(script_));
        return dialog->QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

private:
    FileDialogScript& script_;
};

HRESULT FakeFileDialog::GiveClassObject(FileDialogScript& script, REFIID iid, void** object) {
    static Factory factory(script);
    return factory.QueryInterface(iid, object);
}

FakeFileDialog::FakeFileDialog() : factory_(std::make_unique<Factory>(script)) {
    liveObjects = 0;
    CoRegisterClassObject(CLSID_FileOpenDialog, factory_.get(), CLSCTX_INPROC_SERVER,
                          REGCLS_MULTIPLEUSE, &registration_);
}

FakeFileDialog::~FakeFileDialog() { CoRevokeClassObject(registration_); }

ObLib::ComPtr<RecordingFileDialog> FakeFileDialog::Make() {
    return ObLib::ComPtr<RecordingFileDialog>(new RecordingFileDialog(script));
}

std::vector<std::wstring> FakeFileDialog::Calls() {
    static constexpr std::wstring_view kPrefix = L"dialog.";
    std::vector<std::wstring> calls;
    for (const std::wstring& call : FakeModules::Calls()) {
        if (call.starts_with(kPrefix)) calls.push_back(call.substr(kPrefix.size()));
    }
    return calls;
}

std::vector<std::wstring> FakeFileDialog::CallsOf(const std::vector<std::wstring>& names) {
    std::vector<std::wstring> calls = Calls();
    std::erase_if(calls, [&](const std::wstring& call) {
        const std::wstring name = call.substr(0, call.find(L'('));
        return std::find(names.begin(), names.end(), name) == names.end();
    });
    return calls;
}

int FakeFileDialog::LiveObjects() { return liveObjects; }

} // namespace obtest
