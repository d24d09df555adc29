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

// Where a bar's thumb was dragged to.
struct Thumb {
    ScrollOrientation orientation;
    std::uint16_t code;
    std::int32_t value;
    std::int32_t distance; // from the position that the host has, for `scroll` of a Way
};

void ScrollList(HWND list, const Thumb& thumb) {
    const auto [orientation, code, value, distance] = thumb;
    const std::int64_t pixels = std::int64_t{distance} * ListUnit(list, orientation);
    const auto by = static_cast<std::int32_t>(std::clamp<std::int64_t>(pixels, -kFar, kFar));
    const bool isVertical = orientation == ScrollOrientation::Vertical;
    SendMessageW(list, LVM_SCROLL, static_cast<WPARAM>(isVertical ? 0 : by), isVertical ? by : 0);
}

// By lines.
void ScrollEdit(HWND edit, const Thumb& thumb) {
    SendMessageW(edit, EM_LINESCROLL, 0, thumb.distance);
}

// Asks its own bar for the value, which isn't being dragged here and answers with its position.
void ScrollListBox(HWND list, const Thumb& thumb) {
    const SCROLLINFO moved{sizeof moved, SIF_POS, 0, 0, 0, thumb.value, 0};
    SetScrollInfo(list, BarOf(thumb.orientation), &moved, FALSE);
    Send(list, thumb.orientation, thumb.code, thumb.value);
}

struct Way {
    const wchar_t* className;
    bool isAcrossToo; // an edit scrolls by characters there, which its bar doesn't
    void (*scroll)(HWND host, const Thumb& thumb);
};
constexpr Way kWays[] = {{WC_LISTVIEWW, true, &ScrollList},
                         {WC_EDITW, false, &ScrollEdit},
                         {WC_LISTBOXW, true, &ScrollListBox}};

// Null for any other window.
const Way* WayOf(HWND host, ScrollOrientation orientation) {
    const bool isAcross = orientation == ScrollOrientation::Horizontal;
    const auto* const way = std::ranges::find_if(kWays, [&](const Way& row) {
        return (row.isAcrossToo || !isAcross) && IsOfClass(host, row.className);
    });
    return way != std::end(kWays) ? way : nullptr;
}

bool FitsAMessage(std::int32_t value) { return value == static_cast<std::int16_t>(value); }

// For a window of a known class that the message hasn't brought to the value: its 16 bits were too
// few, or the window has asked its own bar for the value, which isn't being dragged here.
void CatchUp(const Way& way, HWND host, const Thumb& thumb) {
    const auto now = HostScrollInfo(host, thumb.orientation);
    if (!now || now->nPos == thumb.value) return;
    Thumb rest = thumb;
    rest.distance = thumb.value - now->nPos;
    way.scroll(host, rest);
}

// First the message that the system's own bar would send. All that any window can be told is in it,
// and an unknown one gets no more: its bar is its own to move. A known one isn't sent a value that
// the message would cut off.
void ScrollHostTo(HWND host, const Thumb& thumb) {
    const Way* const way = WayOf(host, thumb.orientation);
    if (way == nullptr || FitsAMessage(thumb.value)) {
        Send(host, thumb.orientation, thumb.code, thumb.value);
    }
    if (way != nullptr) CatchUp(*way, host, thumb);
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
        ScrollHostTo(host, {orientation, code, value, 0});
    } else {
        Send(host, orientation, code, 0);
    }
}

} // namespace ObLibX
