// How the parts of a list view are drawn.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include "ObLibX/src/controls/ButtonLayout.h"
#include "ObLibX/src/controls/ListColours.h"
#include "ObLibX/src/dialog/Geometry.h"

namespace ObLibX {

// All functions run on the thread of the dialogs and leave the device context's objects and colours
// as they were.

COLORREF AsColor(const ListColor& color);

// Fill and frame of a whole row. `showsFocus`: and a dotted box, if the row has the focus.
void PaintListRow(HDC dc, const PixelRect& row, const RowState& state, bool isContrast,
                  bool showsFocus);

// A dotted box one pixel inside an area, on whatever has been painted there. Painted twice it is
// gone.
void PaintFocusBox(HDC dc, const PixelRect& area);

// A text on what has been painted, with the device context's font, in one line.
struct ListText {
    const wchar_t* text = L"";
    PixelRect area;
    COLORREF color = 0;
    HorizontalPlace horizontal = HorizontalPlace::Left;
    VerticalPlace vertical = VerticalPlace::Centre;
};
// Too long for its area, it ends in an ellipsis.
void PaintListText(HDC dc, const ListText& text);

// Fill and frame of a title. One without width is passed over.
void PaintListTitle(HDC dc, const PixelRect& title, const HeaderState& state, bool isContrast);

struct CheckPicture {
    HBITMAP bitmap = nullptr;
    bool isOn = false;
    bool isEnabled = true;
    bool isSelected = false; // its row is
};
// A row's check box: its bitmap with its alpha, as it is on a screen of few colours, and lines in
// high contrast. `box` has the bitmap's size.
void PaintListCheck(HDC dc, const PixelRect& box, const CheckPicture& check);

// The picture `index` of a list in the middle of `place`, shrunk where it is larger. An index that
// the list doesn't have is passed over.
void PaintListIcon(HDC dc, HIMAGELIST images, int index, const PixelRect& place);

} // namespace ObLibX
