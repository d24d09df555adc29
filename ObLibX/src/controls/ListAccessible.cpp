#include "ObLibX/src/controls/ListAccessible.h"

#include <oleacc.h>

#include <utility>

#include "ObLib/Src/Win32/ComResources.h"
#include "ObLibX/src/controls/SystemAccessible.h"

namespace ObLibX {
namespace {

using Accessible = ObLib::ComPtr<IAccessible>;

} // namespace

struct ListObject final : SystemAccessible {
    ListObject(RowChecks& checks, Accessible standard)
        : SystemAccessible(std::move(standard)), checks_(&checks) {}
    void Disconnect() { checks_ = nullptr; }

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

private:
    ~ListObject() = default;
    void Destroy() override { delete this; }

    [[nodiscard]] bool IsCheckRow(const VARIANT& child) const {
        return child.vt == VT_I4 && child.lVal > CHILDID_SELF && checks_->HasRowChecks() &&
               child.lVal <= checks_->RowCount();
    }

    RowChecks* checks_; // null once the list has gone
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
