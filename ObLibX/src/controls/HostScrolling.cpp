#include "ObLibX/src/controls/HostScrolling.h"

#include <commctrl.h>

#include <algorithm>
#include <iterator>

#include "ObLibX/src/dialog/FlatDressing.h"

namespace ObLibX {
namespace {

constexpr std::int64_t kFar = 0x7FFFFFFF; // pixels

int BarOf(ScrollOrientation orientation) {
    return orientation == ScrollOrientation::Vertical ? SB_VERT : SB_HORZ;
}

void Send(HWND host, ScrollOrientation orientation, std::uint16_t code, std::int32_t value) {
    const UINT message =
        orientation == ScrollOrientation::Vertical ? UINT{WM_VSCROLL} : UINT{WM_HSCROLL};
    SendMessageW(host, message, MAKEWPARAM(code, static_cast<std::uint32_t>(value)), 0);
}

// What one unit of a list view's bar is in LVM_SCROLL: rows of details as pixels; columns of a
// list, and pixels, as they are.
std::int32_t ListUnit(HWND list, ScrollOrientation orientation) {
    if (orientation == ScrollOrientation::Horizontal) return 1;
    const bool isByRows = SendMessageW(list, LVM_GETVIEW, 0, 0) == LV_VIEW_DETAILS &&
                          SendMessageW(list, LVM_ISGROUPVIEWENABLED, 0, 0) == FALSE;
    RECT row{};
    row.left = LVIR_BOUNDS;
    if (!isByRows || !SendMessageW(list, LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row))) {
        return 1;
    }
    return row.bottom - row.top;
}

bool ScrollList(HWND list, ScrollOrientation orientation, std::int32_t distance) {
    const std::int64_t pixels = std::int64_t{distance} * ListUnit(list, orientation);
    const auto by = static_cast<std::int32_t>(std::clamp<std::int64_t>(pixels, -kFar, kFar));
    const bool isVertical = orientation == ScrollOrientation::Vertical;
    SendMessageW(list, LVM_SCROLL, static_cast<WPARAM>(isVertical ? 0 : by), isVertical ? by : 0);
    return true;
}

// By lines; across it scrolls by characters, which its bar doesn't.
bool ScrollEdit(HWND edit, ScrollOrientation orientation, std::int32_t distance) {
    if (orientation != ScrollOrientation::Vertical) return false;
    SendMessageW(edit, EM_LINESCROLL, 0, distance);
    return true;
}

struct Way {
    const wchar_t* className;
    bool (*scroll)(HWND host, ScrollOrientation orientation, std::int32_t distance);
};
constexpr Way kWays[] = {{WC_LISTVIEWW, &ScrollList}, {WC_EDITW, &ScrollEdit}};

bool ScrollItsWay(HWND host, ScrollOrientation orientation, std::int32_t distance) {
    const auto* const way = std::ranges::find_if(
        kWays, [host](const Way& row) { return IsOfClass(host, row.className); });
    return way != std::end(kWays) && way->scroll(host, orientation, distance);
}

// A message has 16 bits for the value. So most windows ask their own bar for the rest, which isn't
// being dragged here and answers with its position.
void ScrollHostTo(HWND host, ScrollOrientation orientation, std::uint16_t code,
                  std::int32_t value) {
    if (value == static_cast<std::int16_t>(value)) Send(host, orientation, code, value);
    const auto now = HostScrollInfo(host, orientation);
    if (!now || now->nPos == value) return;
    if (ScrollItsWay(host, orientation, value - now->nPos)) return;
    const SCROLLINFO moved{sizeof moved, SIF_POS, 0, 0, 0, value, 0};
    SetScrollInfo(host, BarOf(orientation), &moved, FALSE);
    Send(host, orientation, code, value);
}

} // namespace

std::optional<SCROLLINFO> HostScrollInfo(HWND host, ScrollOrientation orientation) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    if (!GetScrollInfo(host, BarOf(orientation), &info)) return std::nullopt;
    return info;
}

void ScrollHost(HWND host, ScrollOrientation orientation, std::uint16_t code, std::int32_t value) {
    if (code == SB_THUMBTRACK || code == SB_THUMBPOSITION) {
        ScrollHostTo(host, orientation, code, value);
    } else {
        Send(host, orientation, code, 0);
    }
}

} // namespace ObLibX
