#include "ObLibX/src/controls/SystemAccessible.h"

namespace ObLibX {

HRESULT SystemAccessible::QueryInterface(REFIID iid, void** object) {
    const bool isOurs = iid == IID_IUnknown || iid == IID_IDispatch || iid == __uuidof(IAccessible);
    *object = isOurs ? static_cast<IAccessible*>(this) : nullptr;
    if (!isOurs) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG SystemAccessible::AddRef() { return static_cast<ULONG>(InterlockedIncrement(&references_)); }

ULONG SystemAccessible::Release() {
    const LONG left = InterlockedDecrement(&references_);
    if (left == 0) Destroy();
    return static_cast<ULONG>(left);
}

HRESULT SystemAccessible::GetTypeInfoCount(UINT* count) {
    return standard_->GetTypeInfoCount(count);
}

HRESULT SystemAccessible::GetTypeInfo(UINT index, LCID language, ITypeInfo** info) {
    return standard_->GetTypeInfo(index, language, info);
}

HRESULT SystemAccessible::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID language,
                                        DISPID* ids) {
    return standard_->GetIDsOfNames(iid, names, count, language, ids);
}

HRESULT SystemAccessible::Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                 UINT*) {
    return E_NOTIMPL;
}

HRESULT SystemAccessible::get_accParent(IDispatch** parent) {
    return standard_->get_accParent(parent);
}

HRESULT SystemAccessible::get_accChildCount(LONG* count) {
    return standard_->get_accChildCount(count);
}

HRESULT SystemAccessible::get_accChild(VARIANT id, IDispatch** child) {
    return standard_->get_accChild(id, child);
}

HRESULT SystemAccessible::get_accName(VARIANT child, BSTR* name) {
    return standard_->get_accName(child, name);
}

HRESULT SystemAccessible::get_accValue(VARIANT child, BSTR* value) {
    return standard_->get_accValue(child, value);
}

HRESULT SystemAccessible::get_accDescription(VARIANT child, BSTR* text) {
    return standard_->get_accDescription(child, text);
}

HRESULT SystemAccessible::get_accRole(VARIANT child, VARIANT* role) {
    return standard_->get_accRole(child, role);
}

HRESULT SystemAccessible::get_accState(VARIANT child, VARIANT* state) {
    return standard_->get_accState(child, state);
}

HRESULT SystemAccessible::get_accHelp(VARIANT child, BSTR* help) {
    return standard_->get_accHelp(child, help);
}

HRESULT SystemAccessible::get_accHelpTopic(BSTR* file, VARIANT child, LONG* topic) {
    return standard_->get_accHelpTopic(file, child, topic);
}

HRESULT SystemAccessible::get_accKeyboardShortcut(VARIANT child, BSTR* shortcut) {
    return standard_->get_accKeyboardShortcut(child, shortcut);
}

HRESULT SystemAccessible::get_accFocus(VARIANT* focus) { return standard_->get_accFocus(focus); }

HRESULT SystemAccessible::get_accSelection(VARIANT* selection) {
    return standard_->get_accSelection(selection);
}

HRESULT SystemAccessible::get_accDefaultAction(VARIANT child, BSTR* action) {
    return standard_->get_accDefaultAction(child, action);
}

HRESULT SystemAccessible::accSelect(LONG flags, VARIANT child) {
    return standard_->accSelect(flags, child);
}

HRESULT SystemAccessible::accLocation(LONG* left, LONG* top, LONG* width, LONG* height,
                                      VARIANT child) {
    return standard_->accLocation(left, top, width, height, child);
}

HRESULT SystemAccessible::accNavigate(LONG direction, VARIANT start, VARIANT* end) {
    return standard_->accNavigate(direction, start, end);
}

HRESULT SystemAccessible::accHitTest(LONG left, LONG top, VARIANT* child) {
    return standard_->accHitTest(left, top, child);
}

HRESULT SystemAccessible::accDoDefaultAction(VARIANT child) {
    return standard_->accDoDefaultAction(child);
}

HRESULT SystemAccessible::put_accName(VARIANT child, BSTR name) {
    return standard_->put_accName(child, name);
}

HRESULT SystemAccessible::put_accValue(VARIANT child, BSTR value) {
    return standard_->put_accValue(child, value);
}

} // namespace ObLibX
