#include "ObLibX/src/controls/ControlAccessible.h"

#include <oleacc.h>

#include <utility>

#include "ObLib/Src/Win32/ComResources.h"
#include "ObLib/Src/Win32/Guarded.h"

namespace ObLibX {

// Answers for name, role, state, value, description, keys and action; the rest is what the system's
// own object for the window answers. Called on the window's thread: the system passes calls of
// other processes on to it.
struct AccessibleObject final : IAccessible {
    AccessibleObject(AccessibleSource& control, ObLib::ComPtr<IAccessible> standard)
        : source_(&control), standard_(std::move(standard)) {}
    void Disconnect() { source_ = nullptr; }

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

    // ---- IDispatch: the system's object knows the type
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
    HRESULT STDMETHODCALLTYPE get_accName(VARIANT child, BSTR* name) override {
        return Answered(child, [&] { return Text(source_->AccessibleName(), name); });
    }
    HRESULT STDMETHODCALLTYPE get_accRole(VARIANT child, VARIANT* role) override {
        return Answered(child, [&] { return Number(source_->AccessibleRole(), role); });
    }
    HRESULT STDMETHODCALLTYPE get_accState(VARIANT child, VARIANT* state) override {
        return Answered(child, [&] {
            VARIANT own{};
            const bool isKnown = standard_->get_accState(child, &own) == S_OK && own.vt == VT_I4;
            return Number((isKnown ? own.lVal : 0) | source_->AccessibleState(), state);
        });
    }
    HRESULT STDMETHODCALLTYPE accDoDefaultAction(VARIANT child) override {
        return Answered(child, [&] {
            if (!source_->HasAccessibleAction()) return DISP_E_MEMBERNOTFOUND;
            source_->DoAccessibleAction();
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE get_accValue(VARIANT child, BSTR* value) override {
        return Answered(child, [&] { return Text(source_->AccessibleValue(), value); });
    }
    HRESULT STDMETHODCALLTYPE get_accDescription(VARIANT child, BSTR* text) override {
        return Answered(child, [&] { return Text(source_->AccessibleDescription(), text); });
    }
    HRESULT STDMETHODCALLTYPE get_accKeyboardShortcut(VARIANT child, BSTR* shortcut) override {
        return Answered(child, [&] {
            const ObLib::ObString own = source_->AccessibleShortcut();
            return own.HasText() ? Text(own, shortcut)
                                 : standard_->get_accKeyboardShortcut(child, shortcut);
        });
    }
    // Where the system has no word for it, the name describes what it does.
    HRESULT STDMETHODCALLTYPE get_accDefaultAction(VARIANT child, BSTR* action) override {
        return Answered(child, [&] {
            if (!source_->HasAccessibleAction()) return None(action);
            const HRESULT result = standard_->get_accDefaultAction(child, action);
            return result == S_OK && *action != nullptr ? S_OK : get_accName(child, action);
        });
    }

    // ---- IAccessible: the system's
    HRESULT STDMETHODCALLTYPE get_accParent(IDispatch** parent) override {
        return standard_->get_accParent(parent);
    }
    HRESULT STDMETHODCALLTYPE get_accChildCount(LONG* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE get_accChild(VARIANT, IDispatch** child) override {
        *child = nullptr;
        return S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE get_accHelp(VARIANT, BSTR* help) override { return None(help); }
    HRESULT STDMETHODCALLTYPE get_accHelpTopic(BSTR* file, VARIANT, LONG*) override {
        return None(file);
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
    HRESULT STDMETHODCALLTYPE put_accName(VARIANT, BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_accValue(VARIANT, BSTR) override { return E_NOTIMPL; }

private:
    // Without a virtual destructor: interfaces have none.
    ~AccessibleObject() = default;

    template <class Work>
    HRESULT Answered(const VARIANT& child, Work work) {
        if (source_ == nullptr) return CO_E_OBJNOTCONNECTED;
        if (child.vt != VT_I4 || child.lVal != CHILDID_SELF) return E_INVALIDARG;
        return ObLib::Guarded<HRESULT>(E_OUTOFMEMORY, work);
    }
    static HRESULT Number(LONG value, VARIANT* result) {
        result->vt = VT_I4;
        result->lVal = value;
        return S_OK;
    }
    static HRESULT Text(const ObLib::ObString& value, BSTR* text) {
        if (!value.HasText()) return None(text);
        *text = SysAllocString(value.CStr());
        return *text != nullptr ? S_OK : E_OUTOFMEMORY;
    }
    static HRESULT None(BSTR* text) {
        *text = nullptr;
        return S_FALSE;
    }

    AccessibleSource* source_; // null once the window has gone
    ObLib::ComPtr<IAccessible> standard_;
    LONG references_ = 1;
};

LRESULT ControlAccessible::OnGetObject(HWND window, WPARAM wParam, LPARAM lParam,
                                       AccessibleSource& source) {
    if (static_cast<LONG>(lParam) != OBJID_CLIENT) return 0;
    if (object_ == nullptr) {
        ObLib::ComPtr<IAccessible> standard;
        void* made = nullptr;
        if (CreateStdAccessibleObject(window, OBJID_CLIENT, __uuidof(IAccessible), &made) != S_OK) {
            return 0;
        }
        standard.Reset(static_cast<IAccessible*>(made));
        object_ = new AccessibleObject(source, std::move(standard));
    }
    return LresultFromObject(__uuidof(IAccessible), wParam, object_);
}

void ControlAccessible::End() {
    if (object_ == nullptr) return;
    object_->Disconnect();
    std::exchange(object_, nullptr)->Release();
}

} // namespace ObLibX
