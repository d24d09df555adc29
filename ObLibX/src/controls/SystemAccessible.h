// An IAccessible that passes all on to the system's own object for a window: the base of those that
// answer for some of it themselves.
#pragma once

#include <windows.h>

#include <oleacc.h>

#include <utility>

#include "ObLib/Src/Win32/ComResources.h"

namespace ObLibX {

// Counts references, the first of which is its maker's. Called on the window's thread: the system
// passes calls of other processes on to it. It may be kept longer than the window is there, when
// the system's object answers with its own errors.
struct SystemAccessible : IAccessible {
    // ---- IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) final;
    ULONG STDMETHODCALLTYPE AddRef() final;
    ULONG STDMETHODCALLTYPE Release() final;

    // ---- IDispatch: the system's object knows the type; calls by name aren't taken
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) final;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID language, ITypeInfo** info) final;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID language,
                                            DISPID* ids) final;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID iid, LCID language, WORD flags,
                                     DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                                     UINT* argument) final;

    // ---- IAccessible
    HRESULT STDMETHODCALLTYPE get_accParent(IDispatch** parent) override;
    HRESULT STDMETHODCALLTYPE get_accChildCount(LONG* count) override;
    HRESULT STDMETHODCALLTYPE get_accChild(VARIANT id, IDispatch** child) override;
    HRESULT STDMETHODCALLTYPE get_accName(VARIANT child, BSTR* name) override;
    HRESULT STDMETHODCALLTYPE get_accValue(VARIANT child, BSTR* value) override;
    HRESULT STDMETHODCALLTYPE get_accDescription(VARIANT child, BSTR* text) override;
    HRESULT STDMETHODCALLTYPE get_accRole(VARIANT child, VARIANT* role) override;
    HRESULT STDMETHODCALLTYPE get_accState(VARIANT child, VARIANT* state) override;
    HRESULT STDMETHODCALLTYPE get_accHelp(VARIANT child, BSTR* help) override;
    HRESULT STDMETHODCALLTYPE get_accHelpTopic(BSTR* file, VARIANT child, LONG* topic) override;
    HRESULT STDMETHODCALLTYPE get_accKeyboardShortcut(VARIANT child, BSTR* shortcut) override;
    HRESULT STDMETHODCALLTYPE get_accFocus(VARIANT* focus) override;
    HRESULT STDMETHODCALLTYPE get_accSelection(VARIANT* selection) override;
    HRESULT STDMETHODCALLTYPE get_accDefaultAction(VARIANT child, BSTR* action) override;
    HRESULT STDMETHODCALLTYPE accSelect(LONG flags, VARIANT child) override;
    HRESULT STDMETHODCALLTYPE accLocation(LONG* left, LONG* top, LONG* width, LONG* height,
                                          VARIANT child) override;
    HRESULT STDMETHODCALLTYPE accNavigate(LONG direction, VARIANT start, VARIANT* end) override;
    HRESULT STDMETHODCALLTYPE accHitTest(LONG left, LONG top, VARIANT* child) override;
    HRESULT STDMETHODCALLTYPE accDoDefaultAction(VARIANT child) override;
    HRESULT STDMETHODCALLTYPE put_accName(VARIANT child, BSTR name) override;
    HRESULT STDMETHODCALLTYPE put_accValue(VARIANT child, BSTR value) override;

protected:
    explicit SystemAccessible(ObLib::ComPtr<IAccessible> system) : standard_(std::move(system)) {}
    // Without a virtual destructor: interfaces have none.
    ~SystemAccessible() = default;
    // Deletes the whole object, at its last reference.
    virtual void Destroy() = 0;

    ObLib::ComPtr<IAccessible> standard_; // the system's object

private:
    LONG references_ = 1;
};

} // namespace ObLibX
