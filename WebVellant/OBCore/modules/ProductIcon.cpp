#include "OBCore/modules/ProductIcon.h"

#include <utility>

#include "OBCore/modules/ResourceModule.h"

namespace obcore {
namespace {

// The window takes the new icon before the old one is freed.
void SetOne(HWND window, WPARAM kind, int id, SIZE metrics, UniqueIcon& owner) {
    const UINT dpi = GetDpiForWindow(window);
    UniqueIcon loaded(static_cast<HICON>(LoadImageW(
        ResourceModule(), MAKEINTRESOURCEW(id), IMAGE_ICON, GetSystemMetricsForDpi(metrics.cx, dpi),
        GetSystemMetricsForDpi(metrics.cy, dpi), 0)));
    SendMessageW(window, WM_SETICON, kind, reinterpret_cast<LPARAM>(loaded.Get()));
    owner = std::move(loaded);
}

} // namespace

void ProductIcon::Set(HWND window, int smallId, int largeId) {
    SetOne(window, ICON_SMALL, smallId, {SM_CXSMICON, SM_CYSMICON}, small_);
    SetOne(window, ICON_BIG, largeId, {SM_CXICON, SM_CYICON}, large_);
}

} // namespace obcore
