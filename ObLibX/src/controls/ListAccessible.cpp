#include "ObLibX/src/controls/ListAccessible.h"

#include <oleacc.h>

#include <utility>

#include "ObLib/Src/Win32/ComResources.h"
#include "ObLib/Src/Win32/Guarded.h"

namespace ObLibX {
namespace {

using Accessible = ObLib::ComPtr<IAccessible>;

} // namespace

// Called on the list's thread: the system passes calls of other processes on to it.
struct ListObject final : IAccessible {
    ListObject(RowChecks& checks, Accessible standard)
        : checks_(&checks), standard_(std::move(standard)) {}
    void Disconnect() { checks_ = nullptr; }

    // ---- IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const bool isOurs =
            iid == IID_IUnknown || iid == IID_IDispatch || iid == __uuidof(IAccessible);
        *object = isOurs ? static_cast<IAccessible*>(this) : nullptr;
        if (!isOurs) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        return static_cast<ULONG>(InterlockedIncrement(&references_));
    }
    ULONG STDMETHODCALLTYPE Release() override {
        const LONG left = InterlockedDecrement(&references_);
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }

    // ---- IDispatch
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        return standard_->GetTypeInfoCount(count);
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID language, ITypeInfo** info) override {
        return standard_->GetTypeInfo(index, language, info);
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID language,
                                            DISPID* ids) override {
        return standard_->GetIDsOfNames(iid, names, count, language, ids);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }

    // ---- IAccessible: ours
    HRESULT STDMETHODCALLTYPE get_accState(VARIANT child, VARIANT* state) override {
        if (checks_ == nullptr) return CO_E_OBJNOTCONNECTED;
        const HRESULT systems = standard_->get_accState(child, state);
        if (!IsCheckRow(child)) return systems;
        const LONG known = systems == S_OK && state->vt == VT_I4 ? state->lVal : 0;
        const LONG checked = checks_->IsRowChecked(child.lVal - 1) ? STATE_SYSTEM_CHECKED : 0;
        state->vt = VT_I4;
        state->lVal = (known & ~LONG{STATE_SYSTEM_CHECKED}) | checked;
        return S_OK;
    }

    // ---- IAccessible: the system's
    HRESULT STDMETHODCALLTYPE get_accName(VARIANT child, BSTR* name) override {
        return standard_->get_accName(child, name);
    }
    HRESULT STDMETHODCALLTYPE get_accRole(VARIANT child, VARIANT* role) override {
        return standard_->get_accRole(child, role);
    }
    HRESULT STDMETHODCALLTYPE accDoDefaultAction(VARIANT child) override {
        return standard_->accDoDefaultAction(child);
    }
    HRESULT STDMETHODCALLTYPE get_accValue(VARIANT child, BSTR* value) override {
        return standard_->get_accValue(child, value);
    }
    HRESULT STDMETHODCALLTYPE get_accDescription(VARIANT child, BSTR* text) override {
        return standard_->get_accDescription(child, text);
    }
    HRESULT STDMETHODCALLTYPE get_accDefaultAction(VARIANT child, BSTR* action) override {
        return standard_->get_accDefaultAction(child, action);
    }
    HRESULT STDMETHODCALLTYPE get_accParent(IDispatch** parent) override {
        return standard_->get_accParent(parent);
    }
    HRESULT STDMETHODCALLTYPE get_accChildCount(LONG* count) override {
        return standard_->get_accChildCount(count);
    }
    HRESULT STDMETHODCALLTYPE get_accChild(VARIANT id, IDispatch** child) override {
        return standard_->get_accChild(id, child);
    }
    HRESULT STDMETHODCALLTYPE get_accHelp(VARIANT child, BSTR* help) override {
        return standard_->get_accHelp(child, help);
    }
    HRESULT STDMETHODCALLTYPE get_accHelpTopic(BSTR* file, VARIANT child, LONG* topic) override {
        return standard_->get_accHelpTopic(file, child, topic);
    }
    HRESULT STDMETHODCALLTYPE get_accKeyboardShortcut(VARIANT child, BSTR* shortcut) override {
        return standard_->get_accKeyboardShortcut(child, shortcut);
    }
    HRESULT STDMETHODCALLTYPE get_accFocus(VARIANT* focus) override {
        return standard_->get_accFocus(focus);
    }
    HRESULT STDMETHODCALLTYPE get_accSelection(VARIANT* selection) override {
        return standard_->get_accSelection(selection);
    }
    HRESULT STDMETHODCALLTYPE accSelect(LONG flags, VARIANT child) override {
        return standard_->accSelect(flags, child);
    }
    HRESULT STDMETHODCALLTYPE accLocation(LONG* left, LONG* top, LONG* width, LONG* height,
                                          VARIANT child) override {
        return standard_->accLocation(left, top, width, height, child);
    }
    HRESULT STDMETHODCALLTYPE accNavigate(LONG direction, VARIANT start, VARIANT* end) override {
        return standard_->accNavigate(direction, start, end);
    }
    HRESULT STDMETHODCALLTYPE accHitTest(LONG left, LONG top, VARIANT* child) override {
        return standard_->accHitTest(left, top, child);
    }
    HRESULT STDMETHODCALLTYPE put_accName(VARIANT child, BSTR name) override {
        return standard_->put_accName(child, name);
    }
    HRESULT STDMETHODCALLTYPE put_accValue(VARIANT child, BSTR value) override {
        return standard_->put_accValue(child, value);
    }

private:
    // Without a virtual destructor: interfaces have none.
    ~ListObject() = default;

    [[nodiscard]] bool IsCheckRow(const VARIANT& child) const {
        return child.vt == VT_I4 && child.lVal > CHILDID_SELF && checks_->HasRowChecks() &&
               child.lVal <= checks_->RowCount();
    }

    RowChecks* checks_; // null once the list has gone
    Accessible standard_;
    LONG references_ = 1;
};

LRESULT ListAccessible::OnGetObject(HWND list, WPARAM wParam, LPARAM lParam, RowChecks& checks) {
    if (static_cast<LONG>(lParam) != OBJID_CLIENT || isAsking_) return 0;
    if (object_ == nullptr && !Make(list, checks)) return 0;
    return LresultFromObject(__uuidof(IAccessible), wParam, object_);
}

// The system makes the object that it has for lists when the window itself has none to offer.
bool ListAccessible::Make(HWND list, RowChecks& checks) {
    void* made = nullptr;
    isAsking_ = true;
    const HRESULT result = AccessibleObjectFromWindow(list, static_cast<DWORD>(OBJID_CLIENT),
                                                      __uuidof(IAccessible), &made);
    isAsking_ = false;
    Accessible standard(static_cast<IAccessible*>(made));
    if (result != S_OK || !standard) return false;
    object_ = new ListObject(checks, std::move(standard));
    return true;
}

void ListAccessible::End() {
    if (object_ == nullptr) return;
    object_->Disconnect();
    std::exchange(object_, nullptr)->Release();
}

} // namespace ObLibX
