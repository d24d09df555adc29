// One painting of a list view's ground, rows and cells, by the system's custom drawing.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <array>
#include <cstdint>
#include <vector>

#include "ObLibX/src/controls/ListColours.h"
#include "ObLibX/src/controls/ListLayout.h"
#include "ObLibX/src/controls/ListTitles.h"

namespace ObLibX {

class ObXDlg;

// What a list has for its painting. The handles belong to the list.
struct ListLook {
    HWND list = nullptr;
    HWND header = nullptr; // null for none
    std::int32_t id = 0;   // of the list, for `colors`
    HFONT font = nullptr;
    HIMAGELIST images = nullptr; // of the rows; null for none
    bool hasChecks = false;
    std::array<HBITMAP, 4> checkImages{}; // on, off, on disabled, off disabled
    SIZE checkSize{};
    bool hasFocus = false;    // the list has the keyboard's focus
    bool showsFocus = false;  // and its row is seen to have it
    bool boxesItself = false; // it shows the focus and has no row for it
    int hotRow = -1;          // -1 for none
    ObXDlg* colors = nullptr; // asked for the colours of cells; null: nobody is
};

// Made when the system announces a painting, used at each stage of it, then thrown away: a painting
// in the middle of this one has a painter of its own. On the list's thread.
//
// The list's clients, which are asked for texts, pictures, states and colours, may destroy the
// list: then nothing more is painted.
class ListPainter {
public:
    // Throws std::bad_alloc.
    explicit ListPainter(const ListLook& look);

    // At CDDS_PREPAINT: paints the ground, and returns what the painter has to hear of.
    LRESULT Begin(HDC dc) const;
    // At each later stage, before the parent hears of it: selects the font that the parent may
    // replace.
    void BeforeParent(const NMLVCUSTOMDRAW& draw) const;
    // After that. `heard`: what the parent has answered. Returns what the system gets. Throws
    // std::bad_alloc.
    LRESULT AfterParent(NMLVCUSTOMDRAW& draw, LRESULT heard);

private:
    struct Stage;
    // The row that is being painted.
    struct Row {
        int index = -1;
        PixelRect area; // in the list's client coordinates
        RowState state;
        int image = -1;
        HGDIOBJ font = nullptr; // of its cells; null before it was painted
    };

    static const Stage* FindStage(DWORD stage);
    [[nodiscard]] HGDIOBJ RowFont() const { return look_.font; }
    [[nodiscard]] HGDIOBJ CellFont() const { return row_.font; }
    LRESULT PaintRow(NMLVCUSTOMDRAW& draw, LRESULT heard);
    LRESULT PaintCell(NMLVCUSTOMDRAW& draw, LRESULT heard);
    LRESULT PaintEnd(NMLVCUSTOMDRAW& draw, LRESULT heard);

    [[nodiscard]] bool IsThere() const { return IsWindow(look_.list) != FALSE; }
    void ReadRow(int index);
    void PaintCellOf(HDC dc, int column, const ListColumn& place);
    void PaintPictures(HDC dc, const PixelRect& cell, const CellParts& parts);
    const wchar_t* TextOfCell(int column); // valid until the next message to the list
    [[nodiscard]] COLORREF CellColor(int column) const;

    ListLook look_;
    ListMeasures measures_;
    bool isContrast_;
    bool isDisabled_;
    std::vector<ListColumn> columns_;
    Row row_;
    std::vector<wchar_t> text_; // of the cell that is being painted
};

} // namespace ObLibX
