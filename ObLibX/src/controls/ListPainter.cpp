#include "ObLibX/src/controls/ListPainter.h"

#include <algorithm>

#include "ObLibX/src/controls/ListGroupMode.h"
#include "ObLibX/src/controls/ListPainting.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/ObXDlg.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr std::size_t kUsualText = 260;    // characters, with the NUL
constexpr std::size_t kLongestText = 4096; // no screen shows more of a cell

} // namespace

// What is done at a stage: the font that is selected before the parent hears of it, and what is
// painted afterwards.
struct ListPainter::Stage {
    DWORD stage;
    HGDIOBJ (ListPainter::*font)() const; // null: none
    LRESULT (ListPainter::*paint)(NMLVCUSTOMDRAW& draw, LRESULT heard);
};

const ListPainter::Stage* ListPainter::FindStage(DWORD stage) {
    static constexpr Stage kStages[] = {
        {CDDS_ITEMPREPAINT, &ListPainter::RowFont, &ListPainter::PaintRow},
        {CDDS_ITEMPREPAINT | CDDS_SUBITEM, &ListPainter::CellFont, &ListPainter::PaintCell},
        {CDDS_POSTPAINT, nullptr, &ListPainter::PaintEnd}};
    const auto* const found = std::ranges::find(kStages, stage, &Stage::stage);
    return found != std::end(kStages) ? found : nullptr;
}

ListPainter::ListPainter(const ListLook& look)
    : look_(look), measures_(ListMeasuresAt(GetDpi())), isContrast_(IsHighContrast()),
      isDisabled_(IsWindowEnabled(look.list) == FALSE),
      columns_(ColumnsOf(look.list, look.header)) {}

LRESULT ListPainter::Begin(HDC dc) const {
    RECT clip{};
    if (GetClipBox(dc, &clip) != NULLREGION) {
        FillArea(dc, AsPixels(clip), AsColor(ColorOfListGround(isContrast_)));
    }
    return CDRF_NOTIFYITEMDRAW | (look_.boxesItself ? CDRF_NOTIFYPOSTPAINT : 0);
}

void ListPainter::BeforeParent(const NMLVCUSTOMDRAW& draw) const {
    const Stage* const stage = FindStage(draw.nmcd.dwDrawStage);
    if (stage == nullptr || stage->font == nullptr) return;
    if (const HGDIOBJ font = (this->*stage->font)()) SelectObject(draw.nmcd.hdc, font);
}

LRESULT ListPainter::AfterParent(NMLVCUSTOMDRAW& draw, LRESULT heard) {
    const Stage* const stage = FindStage(draw.nmcd.dwDrawStage);
    const bool isDone = (heard & CDRF_SKIPDEFAULT) != 0; // by the parent
    return stage != nullptr && !isDone ? (this->*stage->paint)(draw, heard) : heard;
}

void ListPainter::ReadRow(int index) {
    LVITEMW item{};
    item.mask = LVIF_STATE | LVIF_IMAGE;
    item.iItem = index;
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    item.iImage = I_IMAGENONE;
    SendMessageW(look_.list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    RECT area{LVIR_BOUNDS, 0, 0, 0};
    const bool hasArea = SendMessageW(look_.list, LVM_GETITEMRECT, static_cast<WPARAM>(index),
                                      reinterpret_cast<LPARAM>(&area)) != FALSE;
    row_.index = index;
    row_.area = hasArea ? AsPixels(area) : PixelRect{};
    row_.state = {(item.state & LVIS_SELECTED) != 0, index == look_.hotRow,
                  (item.state & LVIS_FOCUSED) != 0, look_.hasFocus};
    row_.image = item.iImage;
}

// Without the focus of the row the system draws no box around its text.
LRESULT ListPainter::PaintRow(NMLVCUSTOMDRAW& draw, LRESULT heard) {
    ReadRow(static_cast<int>(draw.nmcd.dwItemSpec));
    row_.font = GetCurrentObject(draw.nmcd.hdc, OBJ_FONT);
    draw.nmcd.uItemState &= ~static_cast<UINT>(CDIS_FOCUS);
    PaintListRow(draw.nmcd.hdc, row_.area, row_.state, isContrast_, look_.showsFocus);
    return (heard & CDRF_NOTIFYPOSTPAINT) | CDRF_NOTIFYSUBITEMDRAW;
}

LRESULT ListPainter::PaintCell(NMLVCUSTOMDRAW& draw, LRESULT) {
    const auto row = static_cast<int>(draw.nmcd.dwItemSpec);
    if (row != row_.index) ReadRow(row);
    const auto column = static_cast<std::size_t>(draw.iSubItem);
    if (column < columns_.size()) PaintCellOf(draw.nmcd.hdc, draw.iSubItem, columns_[column]);
    return CDRF_SKIPDEFAULT;
}

// The dialog is asked for its colour first: it may ask the list for another text, which may be in
// the same place.
void ListPainter::PaintCellOf(HDC dc, int column, const ListColumn& place) {
    const PixelRect cell{place.left, row_.area.top, place.right, row_.area.bottom};
    if (cell.IsEmpty()) return;
    const bool isFirst = column == 0;
    CellContents contents;
    if (isFirst && look_.hasChecks) contents.check = {look_.checkSize.cx, look_.checkSize.cy};
    contents.hasIcon = isFirst && look_.images != nullptr;
    const CellParts parts = PlaceInCell(cell, contents, measures_);
    if (isFirst) PaintPictures(dc, cell, parts);
    const COLORREF color = IsThere() ? CellColor(column) : kNoColor;
    const wchar_t* const text = IsThere() ? TextOfCell(column) : L"";
    PaintListText(dc, {text, parts.text, color, place.horizontal, VerticalPlace::Centre});
}

// Clipped where the cell is narrower than they are.
void ListPainter::PaintPictures(HDC dc, const PixelRect& cell, const CellParts& parts) {
    if (parts.check.IsEmpty() && parts.icon.IsEmpty()) return;
    const bool isOn = !parts.check.IsEmpty() && CheckOfRow(look_.list, row_.index) == RowCheck::On;
    if (!IsThere()) return;
    const bool isNarrow = std::max(parts.check.right, parts.icon.right) > cell.right;
    const int saved = isNarrow ? SaveDC(dc) : 0;
    if (saved != 0) IntersectClipRect(dc, cell.left, cell.top, cell.right, cell.bottom);
    const std::size_t image = (isDisabled_ ? 2u : 0u) + (isOn ? 0u : 1u);
    PaintListCheck(dc, parts.check,
                   {look_.checkImages[image], isOn, !isDisabled_, row_.state.isSelected});
    if (!parts.icon.IsEmpty()) PaintListIcon(dc, look_.images, row_.image, parts.icon);
    if (saved != 0) RestoreDC(dc, saved);
}

COLORREF ListPainter::CellColor(int column) const {
    if (look_.colors != nullptr) {
        const COLORREF dialogs = look_.colors->GetListItemColor(look_.id, row_.index, column,
                                                                CellFlags(row_.state, isContrast_));
        if (dialogs != kNoColor) return dialogs;
    }
    return AsColor(ColorOfCell(row_.state, column == 0, isDisabled_, isContrast_));
}

// The control may answer with a text of its own instead of a copy.
const wchar_t* ListPainter::TextOfCell(int column) {
    if (text_.empty()) text_.resize(kUsualText);
    while (true) {
        LVITEMW item{};
        item.iSubItem = column;
        item.pszText = text_.data();
        item.cchTextMax = static_cast<int>(text_.size());
        text_[0] = 0;
        const auto length = static_cast<std::size_t>(SendMessageW(look_.list, LVM_GETITEMTEXTW,
                                                                  static_cast<WPARAM>(row_.index),
                                                                  reinterpret_cast<LPARAM>(&item)));
        if (length + 1 >= text_.size() && text_.size() < kLongestText) {
            text_.resize(kLongestText);
            continue;
        }
        const bool isText = item.pszText != nullptr && item.pszText != LPSTR_TEXTCALLBACKW;
        return isText ? item.pszText : L"";
    }
}

// A list with the focus shows it somewhere: where no row has it, around all of them.
LRESULT ListPainter::PaintEnd(NMLVCUSTOMDRAW& draw, LRESULT heard) {
    if (!look_.boxesItself) return heard;
    PixelRect area = ClientArea(look_.list);
    if (IsWindowVisible(look_.header) != FALSE) area.top += ClientArea(look_.header).bottom;
    PaintFocusBox(draw.nmcd.hdc, area);
    return heard;
}

} // namespace ObLibX
