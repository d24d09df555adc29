#include "ObLibX/src/controls/HelperWindow.h"

#include <algorithm>
#include <cwchar>
#include <vector>

#include "ObLibX/src/dialog/WindowSubclass.h"

namespace ObLibX {
namespace {

struct Helper {
    HWND window;
    const wchar_t* property;
};

// All that there are.
std::vector<Helper>& AllHelpers() {
    static std::vector<Helper> helpers;
    return helpers;
}

HANDLE PropertyValue() { return reinterpret_cast<HANDLE>(INT_PTR{1}); }

// `property` is the name of the property, which must be removed before the window has gone.
LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                           DWORD_PTR property) {
    if (message == WM_CLOSE) {
        DestroyWindow(window);
        return 0;
    }
    if (message == WM_NCDESTROY) {
        const auto* const name = reinterpret_cast<const wchar_t*>(property);
        RemovePropW(window, name);
        std::erase_if(AllHelpers(), [&](const Helper& one) { return one.window == window; });
        RemoveSubclass(window, &Procedure, name);
    }
    return CallNextSubclass(window, message, wParam, lParam);
}

} // namespace

HWND MakeHelperWindow(HWND parent, const PixelRect& rect, const HelperTraits& traits) {
    const HWND window = CreateWindowExW(traits.extendedStyle, traits.className, traits.title,
                                        WS_CHILD | traits.style, rect.left, rect.top, rect.Width(),
                                        rect.Height(), parent, nullptr, nullptr, nullptr);
    if (window == nullptr) return nullptr;
    if (GetWindow(window, GW_HWNDNEXT) != nullptr) {
        SetWindowPos(window, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
    SetPropW(window, traits.property, PropertyValue());
    AddSubclass(window, &Procedure, traits.property);
    AllHelpers().push_back({window, traits.property});
    return window;
}

int CountWithProperty(HWND parent, const wchar_t* property) {
    int count = 0;
    for (HWND child = GetWindow(parent, GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        if (GetPropW(child, property) != nullptr) ++count;
    }
    return count;
}

int CountHelpers(HWND parent, const wchar_t* property) {
    return static_cast<int>(std::ranges::count_if(AllHelpers(), [&](const Helper& one) {
        return std::wcscmp(one.property, property) == 0 && GetParent(one.window) == parent;
    }));
}

PixelRect RectInParent(HWND child) {
    RECT rect{};
    GetWindowRect(child, &rect);
    MapWindowPoints(nullptr, GetParent(child), reinterpret_cast<POINT*>(&rect), 2);
    return {rect.left, rect.top, rect.right, rect.bottom};
}

void MoveChild(HWND child, const PixelRect& rect) {
    SetWindowPos(child, nullptr, rect.left, rect.top, rect.Width(), rect.Height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace ObLibX
