#include "ObLibX/src/controls/ControlAccessible.h"

#include <oleacc.h>

#include <utility>

#include "ObLib/Src/Win32/ComResources.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLibX/src/controls/SystemAccessible.h"

namespace ObLibX {

// Answers for name, role, state, value, description, keys and action; the rest is what the system's
// own object for the window answers.
struct AccessibleObject final : SystemAccessible {
    AccessibleObject(AccessibleSource& control, ObLib::ComPtr<IAccessible> standard)
        : SystemAccessible(std::move(standard)), source_(&control) {}
    void Disconnect() { source_ = nullptr; }

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

    // ---- IAccessible: what a control without children doesn't have
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
    HRESULT STDMETHODCALLTYPE put_accName(VARIANT, BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_accValue(VARIANT, BSTR) override { return E_NOTIMPL; }

private:
    ~AccessibleObject() = default;
    void Destroy() override { delete this; }

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
