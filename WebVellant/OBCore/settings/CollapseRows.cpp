#include "OBCore/settings/CollapseRows.h"

#include <vector>

#include "OBCore/settings/CollapseLayout.h"

namespace obcore {
namespace {

constexpr wchar_t kEditFrame[] = L"OB_EDIT_FRAME"; // a property of the frames around edits
constexpr UINT kKeepAll = SWP_NOZORDER | SWP_NOACTIVATE;

RECT PlaceOf(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    return place;
}

// By the style: children of a dialog that isn't shown yet aren't visible.
bool IsShown(HWND child) { return (GetWindowLongPtrW(child, GWL_STYLE) & WS_VISIBLE) != 0; }

std::vector<std::int32_t> HideAll(HWND window, const int* ids) {
    std::vector<std::int32_t> tops;
    for (; *ids != 0; ++ids) {
        const HWND control = GetDlgItem(window, *ids);
        if (!control) continue;
        tops.push_back(PlaceOf(control).top);
        ShowWindow(control, SW_HIDE);
    }
    return tops;
}

std::vector<HWND> ChildrenOf(HWND window) {
    std::vector<HWND> children;
    for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        children.push_back(child);
    }
    return children;
}

std::vector<StayingChild> Measured(const std::vector<HWND>& children) {
    std::vector<StayingChild> measured;
    for (const HWND child : children) {
        measured.push_back(
            {PlaceOf(child).top, IsShown(child), GetPropW(child, kEditFrame) != nullptr});
    }
    return measured;
}

LONG ClientBottom(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    POINT bottom{0, client.bottom};
    ClientToScreen(window, &bottom);
    return bottom.y;
}

void MoveDown(HWND window, HWND child, int shift) {
    RECT place = PlaceOf(child);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
    SetWindowPos(child, nullptr, place.left, place.top + shift, 0, 0, SWP_NOSIZE | kKeepAll);
}

void Heighten(HWND window, int shift) {
    const RECT place = PlaceOf(window);
    SetWindowPos(window, nullptr, 0, 0, place.right - place.left, place.bottom - place.top + shift,
                 SWP_NOMOVE | kKeepAll);
}

} // namespace

void CollapseRows(HWND window, const int* ids) {
    const std::vector<std::int32_t> tops = HideAll(window, ids);
    const std::vector<HWND> children = ChildrenOf(window);
    const CollapsePlan plan = PlanCollapse(tops, Measured(children), ClientBottom(window));
    for (const std::size_t at : plan.moved) MoveDown(window, children[at], plan.shift);
    if (plan.shift != 0) Heighten(window, plan.shift);
}

} // namespace obcore
