#include "ObLibX/src/controls/ListTitles.h"

#include <commctrl.h>

#include "ObLibX/src/controls/OffscreenPaint.h"

namespace ObLibX {
namespace {

HorizontalPlace PlaceOfFormat(int format) {
    switch (format & HDF_JUSTIFYMASK) {
    case HDF_RIGHT:
        return HorizontalPlace::Right;
    case HDF_CENTER:
        return HorizontalPlace::Centre;
    default:
        return HorizontalPlace::Left;
    }
}

HDITEMW Read(HWND header, int title, HDITEMW item) {
    SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(title), reinterpret_cast<LPARAM>(&item));
    return item;
}

} // namespace

int TitleCount(HWND header) {
    return header != nullptr ? static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0)) : 0;
}

PixelRect TitleArea(HWND header, int title) {
    RECT area{};
    const bool isThere = SendMessageW(header, HDM_GETITEMRECT, static_cast<WPARAM>(title),
                                      reinterpret_cast<LPARAM>(&area)) != FALSE;
    return isThere ? AsPixels(area) : PixelRect{};
}

Title TitleOf(HWND header, int title) {
    Title found;
    HDITEMW item{};
    item.mask = HDI_TEXT | HDI_FORMAT;
    item.pszText = found.text;
    item.cchTextMax = kLongestTitle;
    found.horizontal = PlaceOfFormat(Read(header, title, item).fmt);
    return found;
}

std::vector<ListColumn> ColumnsOf(HWND list, HWND header) {
    POINT origin{};
    if (header != nullptr) MapWindowPoints(header, list, &origin, 1);
    std::vector<ListColumn> columns;
    const int count = TitleCount(header);
    HDITEMW format{};
    format.mask = HDI_FORMAT;
    for (int at = 0; at < count; ++at) {
        const PixelRect title = TitleArea(header, at);
        columns.push_back({title.left + origin.x, title.right + origin.x,
                           PlaceOfFormat(Read(header, at, format).fmt)});
    }
    return columns;
}

} // namespace ObLibX
