// An office program that is driven by automation and does what a test asks. The file "office.txt"
// beside it names in one word what it does with a document. Each call is a line of
// "office-calls.txt" beside it, the start of the process too.
//
//     office.exe CLASS-ID [shared]      with "shared" one process serves every client
#include <windows.h>

#include <oaidl.h>
#include <objbase.h>
#include <oleauto.h>

#include <atomic>
#include <fstream>
#include <map>
#include <mutex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/fakes/Recording.h"

namespace {

HANDLE quit;                       // set once the program is to end and no object is left
std::atomic<int> objects = 0;      // that clients refer to
std::atomic<bool> hasQuit = false; // a client has called Quit
std::mutex lock;
std::vector<std::wstring> names; // by their ids
std::wstring opened;             // the document
bool isOpen = false;             // that document
bool wasRejected = false;
std::set<std::wstring> rejected; // names that were asked for

std::wstring Mode() { return obtest::ReadUtf8File(obtest::BesideProgram(L"office.txt")); }

void Note(const std::wstring& line) {
    obtest::AppendUtf8File(obtest::BesideProgram(L"office-calls.txt"), line + L'\n');
}

DISPID IdOf(const wchar_t* name) {
    const std::lock_guard guard(lock);
    for (std::size_t at = 0; at < names.size(); ++at) {
        if (names[at] == name) return static_cast<DISPID>(at + 1);
    }
    names.emplace_back(name);
    return static_cast<DISPID>(names.size());
}

std::wstring NameOf(DISPID id) {
    const std::lock_guard guard(lock);
    const auto at = static_cast<std::size_t>(id) - 1;
    return id > 0 && at < names.size() ? names[at] : L"?";
}

std::wstring TextOf(const VARIANT& value) {
    switch (value.vt) {
    case VT_BOOL:
        return value.boolVal ? L"true" : L"false";
    case VT_I4:
        return std::to_wstring(value.lVal);
    case VT_BSTR:
        return std::wstring(L"'") + value.bstrVal + L"'";
    default:
        return L"?";
    }
}

// The arguments in the order in which the client gave them.
std::wstring TextOf(const DISPPARAMS& parameters) {
    std::wstring text;
    for (UINT at = 0; at < parameters.cArgs; ++at) {
        const DISPID name = at < parameters.cNamedArgs ? parameters.rgdispidNamedArgs[at] : 0;
        if (at) text += L", ";
        if (name != DISPID_PROPERTYPUT) text += NameOf(name) + L"=";
        text += TextOf(parameters.rgvarg[at]);
    }
    return text;
}

const VARIANT* Argument(const DISPPARAMS& parameters, const wchar_t* name) {
    for (UINT at = 0; at < parameters.cNamedArgs; ++at) {
        if (_wcsicmp(NameOf(parameters.rgdispidNamedArgs[at]).c_str(), name) == 0) {
            return &parameters.rgvarg[at];
        }
    }
    return nullptr;
}

// As the real programs: after Quit the program goes on as long as a client refers to it.
void EndUnused() {
    if (hasQuit && objects == 0) SetEvent(quit);
}

[[noreturn]] void Hang() {
    for (;;) Sleep(INFINITE);
}

void WritePdf(const std::wstring& path) {
    std::ifstream source(opened.c_str(), std::ios::binary);
    std::ostringstream text;
    text << source.rdbuf();
    std::ofstream target(path.c_str(), std::ios::binary);
    target << "%PDF-1.6\n% " << text.str() << "\n%%EOF\n";
}

// The values that can be read before they are set: those of a user's own, unlike what a run sets.
struct Value {
    VARTYPE type;
    int value;
};
std::map<std::wstring, Value> values{
    {L"UpdateLinksAtOpen", {VT_BOOL, 1}}, {L"IgnoreRemoteRequests", {VT_BOOL, 0}},
    {L"AutomationSecurity", {VT_I4, 1}},  {L"DisplayAlerts", {VT_I4, -1}},
    {L"EnableEvents", {VT_BOOL, 1}},      {L"Visible", {VT_BOOL, 0}}};

void SetValue(const std::wstring& name, const VARIANT& value) {
    const std::lock_guard guard(lock);
    values[name] = {value.vt, value.vt == VT_BOOL ? value.boolVal != 0 : value.lVal};
}

bool GetValue(const std::wstring& name, VARIANT* result) {
    const std::lock_guard guard(lock);
    const auto found = values.find(name);
    if (found == values.end()) return false;
    result->vt = found->second.type;
    if (result->vt == VT_BOOL) {
        result->boolVal = found->second.value ? VARIANT_TRUE : VARIANT_FALSE;
    } else {
        result->lVal = found->second.value;
    }
    return true;
}

// A user's document has come, and the program is busy with ours until the test sets another mode.
void HangInUse() {
    CreateWindowExW(0, L"Static", L"A document", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 200, 100,
                    nullptr, nullptr, nullptr, nullptr);
    Note(L"shown");
    while (Mode() == L"hang-in-use") Sleep(10);
}

HRESULT Open(const DISPPARAMS& parameters) {
    const std::wstring mode = Mode();
    if (mode == L"hang-in-use") HangInUse();
    if (mode == L"refuse") return DISP_E_EXCEPTION;
    if (mode == L"hang") Hang();
    if (mode == L"crash") TerminateProcess(GetCurrentProcess(), 3);
    if (mode == L"reject-once" && !wasRejected) {
        wasRejected = true;
        return RPC_E_CALL_REJECTED;
    }
    opened = Argument(parameters, L"FileName")->bstrVal;
    isOpen = true;
    return S_OK;
}

HRESULT Close() {
    if (Mode() == L"refuse-closing") return DISP_E_EXCEPTION;
    isOpen = false;
    return S_OK;
}

HRESULT Write(const DISPPARAMS& parameters) {
    const std::wstring mode = Mode();
    if (mode == L"refuse-writing") return DISP_E_EXCEPTION;
    if (mode == L"hang-writing") Hang();
    if (mode == L"write-nothing") return S_OK;
    for (const wchar_t* name : {L"OutputFileName", L"FileName"}) {
        const VARIANT* const path = Argument(parameters, name);
        if (path && path->vt == VT_BSTR) WritePdf(path->bstrVal);
    }
    return S_OK;
}

// A busy program rejects the question for a name too, here for that of each member once.
bool IsRejected(const wchar_t* name) {
    if (Mode() != L"reject-names") return false;
    const std::lock_guard guard(lock);
    return rejected.insert(name).second;
}

// Any object of the program: it knows every name.
class Object : public IDispatch {
public:
    explicit Object(std::wstring path) : path_(std::move(path)) { ++objects; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
        const bool known = id == IID_IUnknown || id == IID_IDispatch;
        *out = known ? this : nullptr;
        if (known) AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return InterlockedIncrement(&references_); }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = InterlockedDecrement(&references_);
        if (left == 0) delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* texts, UINT count, LCID,
                                            DISPID* ids) override {
        if (IsRejected(texts[0])) return RPC_E_CALL_REJECTED;
        for (UINT at = 0; at < count; ++at) ids[at] = IdOf(texts[at]);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD kind, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO*, UINT*) override {
        const std::wstring name = NameOf(member);
        if (result) VariantInit(result);
        if (kind & DISPATCH_PROPERTYPUT) {
            Note(path_ + L'.' + name + L" = " + TextOf(*parameters));
            SetValue(name, parameters->rgvarg[0]);
            return S_OK;
        }
        if (kind & DISPATCH_PROPERTYGET) return Property(name, result);
        Note(path_ + L'.' + name + L'(' + TextOf(*parameters) + L')');
        return Method(name, *parameters, result);
    }

private:
    virtual ~Object() {
        --objects;
        EndUnused();
    }

    HRESULT Give(const std::wstring& name, VARIANT* result) const {
        result->vt = VT_DISPATCH;
        result->pdispVal = new Object(name);
        return S_OK;
    }
    HRESULT Property(const std::wstring& name, VARIANT* result) const {
        if (name == L"Count") {
            result->vt = VT_I4;
            result->lVal = (isOpen ? 1 : 0) + (Mode() == L"in-use" ? 1 : 0);
            return S_OK;
        }
        if (name == L"Documents" && Mode() == L"no-documents") return DISP_E_EXCEPTION;
        if (name == L"Application") return Give(L"application", result);
        if (GetValue(name, result)) return S_OK;
        return Give(name, result);
    }
    HRESULT Method(const std::wstring& name, const DISPPARAMS& parameters, VARIANT* result) const {
        if (name == L"Open") {
            const HRESULT done = Open(parameters);
            return FAILED(done) ? done : Give(L"document", result);
        }
        if (name == L"Quit") {
            hasQuit = true;
            return S_OK;
        }
        return name == L"Close" ? Close() : Write(parameters);
    }

    std::wstring path_;
    LONG references_ = 1;
};

class Factory : public IClassFactory {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
        const bool known = id == IID_IUnknown || id == IID_IClassFactory;
        *out = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; } // as long as the process
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** out) override {
        auto* const object = new Object(L"application");
        const HRESULT result = object->QueryInterface(id, out);
        object->Release();
        return result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

} // namespace

int wmain(int count, wchar_t** arguments) {
    SetErrorMode(SEM_NOGPFAULTERRORBOX | SEM_FAILCRITICALERRORS);
    Note(L"process " + std::to_wstring(GetCurrentProcessId()));
    if (Mode() == L"hang-at-start") Hang();
    quit = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    CLSID id{};
    if (count < 2 || FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)) ||
        FAILED(CLSIDFromString(arguments[1], &id))) {
        return 1;
    }
    const bool isShared = count > 2 && std::wstring(arguments[2]) == L"shared";
    Factory factory;
    DWORD cookie = 0;
    if (FAILED(CoRegisterClassObject(id, &factory, CLSCTX_LOCAL_SERVER,
                                     isShared ? REGCLS_MULTIPLEUSE : REGCLS_SINGLEUSE, &cookie))) {
        return 2;
    }
    Note(L"ready");
    WaitForSingleObject(quit, INFINITE);
    Note(L"ended");
    CoRevokeClassObject(cookie);
    CoUninitialize();
    return 0;
}
