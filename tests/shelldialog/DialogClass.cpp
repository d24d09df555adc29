// The class object of the shell's file dialog under Wine. Its dialogs are the system's own objects;
// of their calls only Show is another one: it adds the windows that Wine's dialog lacks, and
// returns a failure for a dialog that was ended without a result, as Windows does.
//
// Tests alone use this module. Nothing of it ships.
#include <windows.h>

#include <shobjidl.h>

#include <algorithm>
#include <iterator>
#include <new>

#include "ObLib/Src/Win32/ComResources.h"
#include "tests/shelldialog/AddedWindows.h"

namespace {

using ObLib::ComPtr;
using ShowMethod = HRESULT(STDMETHODCALLTYPE*)(IModalWindow*, HWND);

constexpr int kShowSlot = 3;                  // after those of IUnknown
constexpr std::size_t kFileDialog2Slots = 29; // IFileOpenDialog has as many

// Wine's own module in the system's folder, loaded for good.
HRESULT SystemClassObject(REFCLSID clsid, REFIID iid, void** object) {
    static const HMODULE module =
        LoadLibraryExW(L"comdlg32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    const auto give = reinterpret_cast<decltype(&DllGetClassObject)>(
        reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject")));
    return give ? give(clsid, iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

bool HasResults(IModalWindow& dialog) {
    ComPtr<IFileOpenDialog> open;
    ComPtr<IShellItemArray> items;
    dialog.QueryInterface(IID_IFileOpenDialog, reinterpret_cast<void**>(open.Put()));
    return open && SUCCEEDED(open->GetResults(items.Put()));
}

HRESULT ShowWithWindows(ShowMethod show, IModalWindow& dialog, HWND owner) {
    const shelldialog::AddedWindows windows;
    return show(&dialog, owner);
}

// The calls of one of the object's interfaces, taken over from the system's but for Show. One table
// serves all dialogs of the process, as the system's does, so it is never freed.
template <class Interface>
class Calls {
public:
    static void PutInto(IUnknown& dialog) {
        ComPtr<IModalWindow> window;
        if (FAILED(
                dialog.QueryInterface(__uuidof(Interface), reinterpret_cast<void**>(window.Put()))))
            return;
        void**& table = *reinterpret_cast<void***>(window.Get());
        if (!show_) {
            std::copy_n(table, kFileDialog2Slots, table_);
            show_ = reinterpret_cast<ShowMethod>(table[kShowSlot]);
            table_[kShowSlot] = reinterpret_cast<void*>(&Show);
        }
        table = table_;
    }

private:
    static HRESULT STDMETHODCALLTYPE Show(IModalWindow* dialog, HWND owner) {
        const HRESULT shown = ShowWithWindows(show_, *dialog, owner);
        const bool endedWithoutResult = shown == S_OK && !HasResults(*dialog);
        return endedWithoutResult ? HRESULT_FROM_WIN32(ERROR_CANCELLED) : shown;
    }

    inline static void* table_[kFileDialog2Slots] = {};
    inline static ShowMethod show_ = nullptr;
};

// One for the process, so it isn't counted.
class DialogClass final : public IClassFactory {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const bool known = iid == IID_IUnknown || iid == IID_IClassFactory;
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        *object = nullptr;
        ComPtr<IClassFactory> system;
        const HRESULT found = SystemClassObject(CLSID_FileOpenDialog, IID_IClassFactory,
                                                reinterpret_cast<void**>(system.Put()));
        if (FAILED(found)) return found;
        ComPtr<IUnknown> dialog;
        const HRESULT made =
            system->CreateInstance(outer, IID_IUnknown, reinterpret_cast<void**>(dialog.Put()));
        if (FAILED(made)) return made;
        Calls<IFileDialog2>::PutInto(*dialog.Get());
        Calls<IFileOpenDialog>::PutInto(*dialog.Get());
        return dialog->QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

} // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
    static DialogClass dialogs;
    if (clsid == CLSID_FileOpenDialog) return dialogs.QueryInterface(iid, object);
    return SystemClassObject(clsid, iid, object);
}

STDAPI DllCanUnloadNow() { return S_FALSE; }
