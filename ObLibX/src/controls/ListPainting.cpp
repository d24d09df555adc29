#include "ObLibX/src/controls/ListPainting.h"

#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/ContrastGlyph.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

void FillAndFrameArea(HDC dc, const PixelRect& area, const FillAndFrame& colors) {
    if (area.IsEmpty()) return;
    const COLORREF frame = AsColor(colors.frame);
    const COLORREF fill = AsColor(colors.fill);
    FillArea(dc, area, fill);
    if (frame != fill) FrameArea(dc, area, frame);
}

void CopyBitmap(HDC dc, HBITMAP bitmap, const PixelRect& box) {
    const ObLib::UniqueMemoryDc source(CreateCompatibleDC(dc));
    const HGDIOBJ old = SelectObject(source.Get(), bitmap);
    BitBlt(dc, box.left, box.top, box.Width(), box.Height(), source.Get(), 0, 0, SRCCOPY);
    SelectObject(source.Get(), old);
}

COLORREF ContrastCheckColor(const CheckPicture& check) {
    if (check.isSelected) return GetSysColor(COLOR_HIGHLIGHTTEXT);
    return GetSysColor(check.isEnabled ? COLOR_WINDOWTEXT : COLOR_GRAYTEXT);
}

} // namespace

COLORREF AsColor(const ListColor& color) {
    switch (color.source) {
    case ListColor::Source::Palette:
        return GetPaletteColor(color.number);
    case ListColor::Source::System:
        return GetSysColor(static_cast<int>(color.number));
    default:
        return color.number;
    }
}

// The system draws it by the text colours, which have to be black and white for it.
void PaintFocusBox(HDC dc, const PixelRect& area) {
    const RECT box = AsRect(Inset(area, 1));
    const COLORREF text = SetTextColor(dc, 0);
    const COLORREF ground = SetBkColor(dc, 0xFFFFFF);
    DrawFocusRect(dc, &box);
    SetBkColor(dc, ground);
    SetTextColor(dc, text);
}

void PaintListRow(HDC dc, const PixelRect& row, const RowState& state, bool isContrast,
                  bool showsFocus) {
    FillAndFrameArea(dc, row, ColorsOfRow(state, isContrast));
    if (showsFocus && state.isFocused && state.hasListFocus) PaintFocusBox(dc, row);
}

void PaintListText(HDC dc, const ListText& text) {
    if (text.area.IsEmpty() || text.text[0] == 0) return;
    RECT area = AsRect(text.area);
    const UINT flags = static_cast<UINT>(text.horizontal) | static_cast<UINT>(text.vertical) |
                       DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS;
    const COLORREF color = SetTextColor(dc, text.color);
    const int mode = SetBkMode(dc, TRANSPARENT);
    DrawTextW(dc, text.text, -1, &area, flags);
    SetBkMode(dc, mode);
    SetTextColor(dc, color);
}

void PaintListTitle(HDC dc, const PixelRect& title, const HeaderState& state, bool isContrast) {
    FillAndFrameArea(dc, title, ColorsOfTitle(state, isContrast));
}

void PaintListCheck(HDC dc, const PixelRect& box, const CheckPicture& check) {
    if (box.IsEmpty()) return;
    if (IsHighContrast()) {
        DrawContrastCheck(dc, box, check.isOn ? CheckState::On : CheckState::Off,
                          ContrastCheckColor(check));
    } else if (IsLowColor()) {
        CopyBitmap(dc, check.bitmap, box);
    } else {
        DrawImageAt(dc, check.bitmap, box.left, box.top);
    }
}

void PaintListIcon(HDC dc, HIMAGELIST images, int index, const PixelRect& place) {
    int width = 0;
    int height = 0;
    if (index < 0 || index >= ImageList_GetImageCount(images) ||
        !ImageList_GetIconSize(images, &width, &height)) {
        return;
    }
    if (width <= place.Width() && height <= place.Height()) {
        const PixelRect icon = Centred(place, {width, height});
        ImageList_Draw(images, index, dc, icon.left, icon.top, ILD_TRANSPARENT);
        return;
    }
    const HICON icon = ImageList_GetIcon(images, index, ILD_TRANSPARENT);
    if (icon == nullptr) return;
    const ObLib::ScopeExit destroyed([icon] { DestroyIcon(icon); });
    DrawIconEx(dc, place.left, place.top, icon, place.Width(), place.Height(), 0, nullptr,
               DI_NORMAL);
}

} // namespace ObLibX
