#include "tests/support/AccessibleTree.h"

#include <commctrl.h>
#include <oleacc.h>

#include <algorithm>

#include "ObLib/Src/Win32/ComResources.h"
#include "tests/support/WindowKit.h"

namespace obtest {
namespace {

constexpr LRESULT kMostRows = 5; // of a list view that are described

VARIANT Child(LONG id) {
    VARIANT child{};
    child.vt = VT_I4;
    child.lVal = id;
    return child;
}

VARIANT Self() { return Child(CHILDID_SELF); }

using TextGetter = HRESULT (STDMETHODCALLTYPE IAccessible::*)(VARIANT, BSTR*);

std::wstring TextBy(TextGetter getter, IAccessible& object) {
    BSTR text = nullptr;
    if ((object.*getter)(Self(), &text) != S_OK || text == nullptr) return {};
    const std::wstring copy(text, SysStringLen(text));
    SysFreeString(text);
    return copy;
}

std::wstring RoleOf(IAccessible& object) {
    VARIANT role{};
    if (object.get_accRole(Self(), &role) != S_OK || role.vt != VT_I4) return {};
    wchar_t name[64] = L"";
    GetRoleTextW(static_cast<DWORD>(role.lVal), name, 64);
    return name;
}

std::wstring StatesOf(IAccessible& object, const VARIANT& child) {
    VARIANT states{};
    if (object.get_accState(child, &states) != S_OK || states.vt != VT_I4) return {};
    std::wstring names;
    for (DWORD bit = 1; bit != 0; bit <<= 1) {
        if ((static_cast<DWORD>(states.lVal) & bit) == 0) continue;
        wchar_t name[64] = L"";
        GetStateTextW(bit, name, 64);
        names += (names.empty() ? L"" : L", ") + std::wstring(name);
    }
    return names;
}

std::vector<std::wstring> RowsOf(HWND window, IAccessible& object) {
    std::vector<std::wstring> rows;
    if (ClassOf(window) != WC_LISTVIEWW) return rows;
    const LRESULT count = SendMessageW(window, LVM_GETITEMCOUNT, 0, 0);
    for (LONG id = 1; id <= std::min(count, kMostRows); ++id) {
        rows.push_back(StatesOf(object, Child(id)));
    }
    return rows;
}

AccessibleNode NodeOf(HWND window) {
    AccessibleNode node;
    node.id = GetDlgCtrlID(window);
    void* made = nullptr;
    if (AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                   &made) != S_OK) {
        return node;
    }
    const ObLib::ComPtr<IAccessible> owner(static_cast<IAccessible*>(made));
    IAccessible& object = *owner.Get();
    node.role = RoleOf(object);
    node.name = TextBy(&IAccessible::get_accName, object);
    node.states = StatesOf(object, Self());
    node.value = TextBy(&IAccessible::get_accValue, object);
    node.description = TextBy(&IAccessible::get_accDescription, object);
    node.action = TextBy(&IAccessible::get_accDefaultAction, object);
    node.rows = RowsOf(window, object);
    return node;
}

void Append(std::wstring& line, const wchar_t* what, const std::wstring& text) {
    if (!text.empty()) line += std::wstring(L"; ") + what + L" " + text;
}

} // namespace

std::vector<AccessibleNode> AccessibleNodes(HWND window) {
    std::vector<AccessibleNode> nodes;
    for (const HWND control : Descendants(window)) {
        if (IsWindowVisible(control)) nodes.push_back(NodeOf(control));
    }
    return nodes;
}

std::wstring Line(const AccessibleNode& node) {
    std::wstring line = std::to_wstring(node.id) + L"  " +
                        (node.role.empty() ? L"gives no object" : node.role) + L" \"" + node.name +
                        L"\"";
    Append(line, L"is", node.states);
    Append(line, L"value", node.value);
    Append(line, L"range", node.description);
    Append(line, L"action", node.action);
    for (std::size_t row = 0; row < node.rows.size(); ++row) {
        Append(line, (L"row " + std::to_wstring(row + 1)).c_str(), node.rows[row]);
    }
    return line;
}

} // namespace obtest
