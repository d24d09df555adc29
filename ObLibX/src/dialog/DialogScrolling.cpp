#include "ObLibX/src/dialog/DialogScrolling.h"

#include <windowsx.h>

#include <algorithm>
#include <utility>

#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLibX/src/dialog/Gesture.h"

namespace ObLibX {
namespace {

ScrollGuard& Guard() {
    static ScrollGuard guard;
    return guard;
}

std::int32_t panStart = 0; // where the finger went down, in pixels of the desktop

SCROLLINFO BarInfo(HWND bar) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    GetScrollInfo(bar, SB_CTL, &info);
    return info;
}

void ShowPosition(HWND bar, std::int64_t position) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_POS;
    info.nPos = static_cast<int>(position);
    SetScrollInfo(bar, SB_CTL, &info, TRUE);
}

// Calls targets until no newer position is there. A target that is being called already gets it.
void Run(const ScrollArea& area, std::int64_t position) {
    if (!Guard().Begin({&area, position})) return;
    const ObLib::ScopeExit lower([] { Guard().End(); });
    while (const auto next = Guard().TakePending()) {
        const auto& moved = *static_cast<const ScrollArea*>(next->area);
        moved.target->OnScroll(next->position, moved.cookie);
    }
}

// Bars keep positions as int, so a panel has fewer units than that has.
void ScrollTo(const ScrollArea& area, std::int64_t position) {
    ShowPosition(area.scrollBarWindow, position);
    Run(area, position);
}

// A turn with Ctrl or Shift leaves the guard up.
void TurnWheel(const ScrollArea& area, WPARAM wParam) {
    if (!IsWindowVisible(area.scrollBarWindow) || !Guard().BeginWheel()) return;
    if ((GET_KEYSTATE_WPARAM(wParam) & (MK_CONTROL | MK_SHIFT)) != 0) return;
    const std::int64_t before = BarInfo(area.scrollBarWindow).nPos;
    const std::int64_t after =
        WheelScrollPosition(area.extent, before, GET_WHEEL_DELTA_WPARAM(wParam));
    if (after == before) {
        Guard().End();
    } else {
        ScrollTo(area, after);
    }
}

void Pan(const ScrollArea& area, std::int32_t y) {
    const std::int64_t before = BarInfo(area.scrollBarWindow).nPos;
    const auto after = PanScrollPosition(area.extent, before, panStart, y, area.unitPixels);
    if (after) ScrollTo(area, *after);
}

} // namespace

DialogScrolling::~DialogScrolling() {
    for (const auto& [id, area] : areas_) Guard().Forget(area.get());
}

void DialogScrolling::Add(std::int32_t scrollBarId, const ScrollArea& area) {
    auto& place = areas_[scrollBarId];
    // In place, as a target that is being called may replace its own area.
    if (place) {
        *place = area;
    } else {
        place = std::make_unique<ScrollArea>(area);
    }
}

const ScrollArea* DialogScrolling::Hit(HWND dialog, POINT point) const {
    ScreenToClient(dialog, &point);
    const auto found = std::ranges::find_if(areas_, [&](const auto& entry) {
        const PixelRect& rectangle = entry.second->rectangle;
        return rectangle.IsEmpty() || rectangle.Contains(PixelPoint{point.x, point.y});
    });
    return found == areas_.end() ? nullptr : found->second.get();
}

bool DialogScrolling::OnMouseWheel(HWND dialog, WPARAM wParam, LPARAM lParam) const {
    const ScrollArea* const area = Hit(dialog, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
    if (area == nullptr) return false;
    TurnWheel(*area, wParam);
    return true;
}

bool DialogScrolling::OnScrollBar(WPARAM wParam, LPARAM lParam) const {
    const auto bar = reinterpret_cast<HWND>(lParam);
    const auto found = std::ranges::find_if(
        areas_, [&](const auto& entry) { return entry.second->scrollBarWindow == bar; });
    if (bar == nullptr || found == areas_.end()) return false;
    const ScrollArea& area = *found->second;
    const SCROLLINFO info = BarInfo(bar);
    const auto position =
        BarScrollPosition(area.extent, LOWORD(wParam), {info.nPos, info.nPage, info.nTrackPos});
    if (position) ScrollTo(area, *position);
    return true;
}

// The system itself has to see the beginning of a gesture, and closes the handle of what it sees.
bool DialogScrolling::OnGesture(HWND dialog, LPARAM lParam) const {
    const auto handle = reinterpret_cast<HGESTUREINFO>(lParam);
    GESTUREINFO info{};
    info.cbSize = sizeof info;
    if (!ObLibX::GetGestureInfo(handle, &info)) return false;
    const POINT point{info.ptsLocation.x, info.ptsLocation.y};
    if (info.dwID == GID_BEGIN) panStart = point.y; // also beside the areas: the finger may pan in
    const ScrollArea* const area = Hit(dialog, point);
    if (area == nullptr || info.dwID != GID_PAN) return false;
    const ObLib::ScopeExit close([handle] { ObLibX::CloseGestureInfoHandle(handle); });
    Pan(*area, point.y);
    return true;
}

void DialogScrolling::OnGestureNotify(HWND dialog, LPARAM lParam) const {
    const auto& notified = *reinterpret_cast<const GESTURENOTIFYSTRUCT*>(lParam);
    const POINT point{notified.ptsLocation.x, notified.ptsLocation.y};
    const ScrollArea* const area = Hit(dialog, point);
    if (area == nullptr) return;
    GESTURECONFIG all{0, GC_ALLGESTURES, 0};
    ObLibX::SetGestureConfig(area->panelWindow, 0, 1, &all, sizeof all);
}

} // namespace ObLibX
