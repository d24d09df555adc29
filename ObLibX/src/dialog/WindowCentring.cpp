#include "ObLibX/src/dialog/WindowCentring.h"

#include <utility>

#include "ObLibX/src/dialog/FlatDressing.h"
#include "ObLibX/src/dialog/WindowPlacement.h"

namespace ObLibX {
namespace {

// Of the product's main window, which counts for nothing while it is hidden.
constexpr wchar_t kMainWindowClass[] = L"OmbrixWClass";

bool isNextAtCursor = false;

PixelRect AsPixels(const RECT& rect) { return {rect.left, rect.top, rect.right, rect.bottom}; }

PixelRect WindowRectOf(HWND window) {
    RECT rect{};
    GetWindowRect(window, &rect);
    return AsPixels(rect);
}

// The parent; where that is the window itself, the parent's own; the desktop for one that is
// minimized or isn't there.
HWND ReferenceOf(HWND window) {
    HWND reference = GetParent(window);
    if (reference == window) reference = GetParent(reference);
    if (reference == nullptr || IsIconic(reference)) reference = GetDesktopWindow();
    return reference;
}

std::optional<PixelRect> ReferenceRect(HWND window) {
    const HWND reference = ReferenceOf(window);
    if (!IsWindowVisible(reference) && IsOfClass(reference, kMainWindowClass)) return {};
    return WindowRectOf(reference);
}

std::optional<PixelRect> WorkAreaAt(PixelPoint point) {
    const HMONITOR monitor = MonitorFromPoint({point.x, point.y}, MONITOR_DEFAULTTONULL);
    MONITORINFO info{};
    info.cbSize = sizeof info;
    if (monitor == nullptr || !GetMonitorInfoW(monitor, &info)) return {};
    return AsPixels(info.rcWork);
}

PixelRect SystemWorkArea() {
    RECT area{};
    if (SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0)) return AsPixels(area);
    return {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
}

PlacementRequest RequestFor(HWND window, const RECT* rectangle) {
    const PixelRect size = rectangle != nullptr ? AsPixels(*rectangle) : WindowRectOf(window);
    PlacementRequest request;
    request.width = size.Width();
    request.height = size.Height();
    request.isSizeGiven = rectangle != nullptr;
    request.reference = ReferenceRect(window);
    POINT cursor{};
    if (GetCursorPos(&cursor)) request.cursor = {cursor.x, cursor.y};
    request.isAtCursor = std::exchange(isNextAtCursor, false);
    return request;
}

} // namespace

void CenterWindow(HWND window, POINT* position, const RECT* rectangle, bool move) {
    const PixelPoint place =
        PlaceWindow(RequestFor(window, rectangle), {&WorkAreaAt, SystemWorkArea()});
    if (position != nullptr) *position = {place.x, place.y};
    if (!move) return;
    SetWindowPos(window, nullptr, place.x, place.y, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void PlaceNextWindowAtCursor() { isNextAtCursor = true; }

} // namespace ObLibX
