// How the flat list view is painted: its ground, rows and cells, and the header.
#include <algorithm>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLibX/src/controls/ControlText.h"
#include "ObLibX/src/controls/ListPainting.h"
#include "ObLibX/src/controls/ObCustList.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/ObXDlg.h"
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr std::size_t kUsualText = 260;    // characters, with the NUL
constexpr std::size_t kLongestText = 4096; // no screen shows more of a cell

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

PixelRect TitleArea(HWND header, int title) {
    RECT area{};
    const bool isThere = SendMessageW(header, HDM_GETITEMRECT, static_cast<WPARAM>(title),
                                      reinterpret_cast<LPARAM>(&area)) != FALSE;
    return isThere ? AsPixels(area) : PixelRect{};
}

int TitleCount(HWND header) {
    return header != nullptr ? static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0)) : 0;
}

// Format and text of a title.
struct Title {
    HorizontalPlace horizontal = HorizontalPlace::Left;
    wchar_t text[kUsualText] = {};

    Title(HWND header, int index, UINT mask) {
        HDITEMW item{};
        item.mask = mask;
        item.pszText = text;
        item.cchTextMax = kUsualText;
        SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(index),
                     reinterpret_cast<LPARAM>(&item));
        horizontal = PlaceOfFormat(item.fmt);
    }
};

bool IsLast(LRESULT heard) { return (heard & CDRF_SKIPDEFAULT) != 0; }

} // namespace

// ---- The parent

LRESULT CALLBACK ObFlatListView::ParentProcedure(HWND window, UINT message, WPARAM wParam,
                                                 LPARAM lParam, UINT_PTR, DWORD_PTR object) {
    auto* const list = reinterpret_cast<ObFlatListView*>(object);
    if (message == WM_ERASEBKGND) return list->EraseParent(wParam, lParam);
    const auto* const header = reinterpret_cast<const NMHDR*>(lParam);
    if (message != WM_NOTIFY || header->code != static_cast<UINT>(NM_CUSTOMDRAW) ||
        header->hwndFrom != list->window) {
        return CallNextSubclass(window, message, wParam, lParam);
    }
    auto& draw = *reinterpret_cast<NMLVCUSTOMDRAW*>(lParam);
    list->SelectFont(draw);
    const HWND own = list->window;
    const LRESULT heard = CallNextSubclass(window, message, wParam, lParam);
    if (IsWindow(own) == FALSE || list->window != own) return heard;
    return ObLib::Guarded(heard, [&] { return list->OnDrawStage(draw, heard); });
}

// The list's place stays as it is, as the list paints all of it: without this it would flash. What
// the list itself asks for, with its transparent background, is its own ground.
LRESULT ObFlatListView::EraseParent(WPARAM wParam, LPARAM lParam) const {
    if (isPainting_) return TRUE;
    const auto dc = reinterpret_cast<HDC>(wParam);
    const bool paintsItself = WindowFromDC(dc) == parent_ && IsWindowVisible(window) && IsDetails();
    const int saved = paintsItself ? SaveDC(dc) : 0;
    if (saved != 0) {
        RECT place{};
        GetWindowRect(window, &place);
        MapWindowPoints(HWND_DESKTOP, parent_, reinterpret_cast<POINT*>(&place), 2);
        ExcludeClipRect(dc, place.left, place.top, place.right, place.bottom);
    }
    const LRESULT result = CallNextSubclass(parent_, WM_ERASEBKGND, wParam, lParam);
    if (saved != 0) RestoreDC(dc, saved);
    return result;
}

// ---- Custom drawing

// Of the list for a row, and of the row for its cells, before the parent may choose another one.
void ObFlatListView::SelectFont(const NMLVCUSTOMDRAW& draw) const {
    if (!paintsRows_) return;
    if (draw.nmcd.dwDrawStage == CDDS_ITEMPREPAINT) SelectObject(draw.nmcd.hdc, font);
    if (draw.nmcd.dwDrawStage == (CDDS_ITEMPREPAINT | CDDS_SUBITEM) && row_.font != nullptr) {
        SelectObject(draw.nmcd.hdc, row_.font);
    }
}

// Groups are the system's to paint; each is announced as if a painting began.
LRESULT ObFlatListView::OnDrawStage(NMLVCUSTOMDRAW& draw, LRESULT heard) {
    if (draw.dwItemType == LVCDI_GROUP) return heard;
    const DWORD stage = draw.nmcd.dwDrawStage;
    if (stage == CDDS_PREPAINT) {
        paintsRows_ = !IsLast(heard) && IsDetails();
        if (!paintsRows_) return heard;
        BeginPainting(draw.nmcd.hdc);
        return heard | CDRF_NOTIFYITEMDRAW;
    }
    if (!paintsRows_ || IsLast(heard)) return heard;
    if (stage == CDDS_ITEMPREPAINT) {
        PaintRow(draw);
        return (heard & CDRF_NOTIFYPOSTPAINT) | CDRF_NOTIFYSUBITEMDRAW;
    }
    if (stage != (CDDS_ITEMPREPAINT | CDDS_SUBITEM)) return heard;
    PaintCell(draw);
    return CDRF_SKIPDEFAULT;
}

void ObFlatListView::BeginPainting(HDC dc) {
    painting_.measures = ListMeasuresAt(GetDpi());
    painting_.isContrast = IsHighContrast();
    painting_.isDisabled = IsWindowEnabled(window) == FALSE;
    painting_.showsFocus = (HiddenCues(*this) & UISF_HIDEFOCUS) == 0;
    painting_.images =
        groupMode_.IsOn()
            ? groupMode_.Images()
            : reinterpret_cast<HIMAGELIST>(SendMessageW(window, LVM_GETIMAGELIST, LVSIL_SMALL, 0));
    painting_.hasChecks =
        groupMode_.IsOn()
            ? groupMode_.HasChecks()
            : (SendMessageW(window, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0) & LVS_EX_CHECKBOXES) != 0;
    ReadColumns();
    RECT clip{};
    if (GetClipBox(dc, &clip) == NULLREGION) return;
    FillArea(dc, AsPixels(clip), AsColor(ColorOfListGround(painting_.isContrast)));
}

void ObFlatListView::ReadColumns() {
    painting_.columns.clear();
    POINT origin{};
    if (header_ != nullptr) MapWindowPoints(header_, window, &origin, 1);
    const int count = TitleCount(header_);
    for (int at = 0; at < count; ++at) {
        const PixelRect title = TitleArea(header_, at);
        painting_.columns.push_back({title.left + origin.x, title.right + origin.x,
                                     Title(header_, at, HDI_FORMAT).horizontal});
    }
}

void ObFlatListView::ReadRow(int index) {
    LVITEMW item{};
    item.mask = LVIF_STATE | LVIF_IMAGE;
    item.iItem = index;
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    item.iImage = I_IMAGENONE;
    SendMessageW(window, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    row_.index = index;
    row_.area = AreaOfRow(index);
    row_.state = {(item.state & LVIS_SELECTED) != 0, index == hotRow_,
                  (item.state & LVIS_FOCUSED) != 0, isFocused};
    row_.image = item.iImage;
}

// Without the focus of the row the system draws no box around its text.
void ObFlatListView::PaintRow(NMLVCUSTOMDRAW& draw) {
    ReadRow(static_cast<int>(draw.nmcd.dwItemSpec));
    row_.font = GetCurrentObject(draw.nmcd.hdc, OBJ_FONT);
    draw.nmcd.uItemState &= ~static_cast<UINT>(CDIS_FOCUS);
    PaintListRow(draw.nmcd.hdc, row_.area, row_.state, painting_.isContrast, painting_.showsFocus);
}

void ObFlatListView::PaintCell(const NMLVCUSTOMDRAW& draw) {
    const int column = draw.iSubItem;
    const auto row = static_cast<int>(draw.nmcd.dwItemSpec);
    if (row != row_.index) ReadRow(row);
    if (column < 0 || static_cast<std::size_t>(column) >= painting_.columns.size()) return;
    const Column& place = painting_.columns[static_cast<std::size_t>(column)];
    const PixelRect cell{place.left, row_.area.top, place.right, row_.area.bottom};
    if (cell.IsEmpty()) return;
    const bool isFirst = column == 0;
    CellContents contents;
    if (isFirst && painting_.hasChecks) contents.check = {checkSize.cx, checkSize.cy};
    contents.hasIcon = isFirst && painting_.images != nullptr;
    const CellParts parts = PlaceInCell(cell, contents, painting_.measures);
    const HDC dc = draw.nmcd.hdc;
    if (isFirst) PaintPictures(dc, cell, parts);
    PaintListText(dc, {TextOfCell(row, column), parts.text, CellColor(column), place.horizontal,
                       VerticalPlace::Centre});
}

// Clipped where the cell is narrower than they are.
void ObFlatListView::PaintPictures(HDC dc, const PixelRect& cell, const CellParts& parts) {
    if (parts.check.IsEmpty() && parts.icon.IsEmpty()) return;
    const bool isNarrow = std::max(parts.check.right, parts.icon.right) > cell.right;
    const int saved = isNarrow ? SaveDC(dc) : 0;
    if (saved != 0) IntersectClipRect(dc, cell.left, cell.top, cell.right, cell.bottom);
    if (!parts.check.IsEmpty()) {
        const bool isOn = IsRowChecked(row_.index);
        const std::size_t image = (painting_.isDisabled ? 2u : 0u) + (isOn ? 0u : 1u);
        PaintListCheck(
            dc, parts.check,
            {checkImages[image].Get(), isOn, !painting_.isDisabled, row_.state.isSelected});
    }
    if (!parts.icon.IsEmpty()) PaintListIcon(dc, painting_.images, row_.image, parts.icon);
    if (saved != 0) RestoreDC(dc, saved);
}

COLORREF ObFlatListView::CellColor(int column) const {
    const COLORREF dialogs =
        colorSource != nullptr
            ? colorSource->GetListItemColor(id, row_.index, column,
                                            CellFlags(row_.state, painting_.isContrast))
            : kNoColor;
    if (dialogs != kNoColor) return dialogs;
    return AsColor(
        ColorOfCell(row_.state, column == 0, painting_.isDisabled, painting_.isContrast));
}

// The control may answer with a text of its own instead of a copy.
const wchar_t* ObFlatListView::TextOfCell(int row, int column) {
    if (text_.empty()) text_.resize(kUsualText);
    while (true) {
        LVITEMW item{};
        item.iSubItem = column;
        item.pszText = text_.data();
        item.cchTextMax = static_cast<int>(text_.size());
        text_[0] = 0;
        const auto length = static_cast<std::size_t>(SendMessageW(
            window, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item)));
        if (length + 1 >= text_.size() && text_.size() < kLongestText) {
            text_.resize(kLongestText);
            continue;
        }
        const bool isText = item.pszText != nullptr && item.pszText != LPSTR_TEXTCALLBACKW;
        return isText ? item.pszText : L"";
    }
}

PixelRect ObFlatListView::FirstCell(int row) {
    ReadColumns();
    if (painting_.columns.empty()) return {};
    const PixelRect area = AreaOfRow(row);
    return {painting_.columns[0].left, area.top, painting_.columns[0].right, area.bottom};
}

// ---- The header

LRESULT CALLBACK ObFlatListView::HeaderProcedure(HWND window, UINT message, WPARAM wParam,
                                                 LPARAM lParam, UINT_PTR, DWORD_PTR object) {
    auto* const list = reinterpret_cast<ObFlatListView*>(object);
    switch (message) {
    case WM_NCDESTROY:
        RemoveSubclass(window, &ObFlatListView::HeaderProcedure, list);
        list->header_ = nullptr;
        break;
    case WM_ERASEBKGND:
        return TRUE;
    case WM_PAINT:
        list->PaintHeader();
        return 0;
    case WM_PRINTCLIENT: {
        const LRESULT result = CallNextSubclass(window, message, wParam, lParam);
        list->FillAfterTitles(reinterpret_cast<HDC>(wParam));
        return result;
    }
    case WM_MOUSEMOVE:
        list->MoveOnHeader(
            {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))});
        break;
    case WM_MOUSELEAVE:
        list->SetHotTitle(-1);
        break;
    default:
        break;
    }
    return CallNextSubclass(window, message, wParam, lParam);
}

void ObFlatListView::PaintHeader() {
    const PaintDc dc(header_);
    if (header_ == nullptr || dc.Get() == nullptr) return;
    const OffscreenPaint picture(header_, dc.Get());
    if (!picture) return;
    FillArea(picture.Dc(), picture.Area(), AsColor(ColorOfListGround(IsHighContrast())));
    CallNextSubclass(header_, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(picture.Dc()), PRF_CLIENT);
    FillAfterTitles(picture.Dc());
    picture.Show();
}

void ObFlatListView::FillAfterTitles(HDC dc) const {
    PixelRect rest = ClientArea(header_);
    const int count = TitleCount(header_);
    for (int at = 0; at < count; ++at) {
        rest.left = std::max(rest.left, TitleArea(header_, at).right);
    }
    if (!rest.IsEmpty()) FillArea(dc, rest, AsColor(ColorOfListGround(IsHighContrast())));
}

void ObFlatListView::MoveOnHeader(PixelPoint point) {
    if (hotTitle_ < 0) {
        TRACKMOUSEEVENT leave{sizeof leave, TME_LEAVE, header_, 0};
        TrackMouseEvent(&leave);
    }
    HDHITTESTINFO hit{};
    hit.pt = {point.x, point.y};
    SendMessageW(header_, HDM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    SetHotTitle((hit.flags & (HHT_ONHEADER | HHT_ONDIVIDER)) != 0 ? hit.iItem : -1);
}

void ObFlatListView::SetHotTitle(int title) {
    if (title == hotTitle_) return;
    hotTitle_ = title;
    InvalidateRect(header_, nullptr, FALSE);
}

std::optional<LRESULT> ObFlatListView::OnHeaderNotification(const NMHDR& header) {
    const bool isDraw = header.hwndFrom == header_ && header_ != nullptr &&
                        header.code == static_cast<UINT>(NM_CUSTOMDRAW);
    if (!isDraw) return std::nullopt;
    const auto& draw = reinterpret_cast<const NMCUSTOMDRAW&>(header);
    if (draw.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    if (draw.dwDrawStage != CDDS_ITEMPREPAINT) return CDRF_DODEFAULT;
    PaintTitle(draw);
    return CDRF_SKIPDEFAULT;
}

void ObFlatListView::PaintTitle(const NMCUSTOMDRAW& draw) const {
    const PixelRect area = AsPixels(draw.rc);
    if (area.IsEmpty()) return;
    const auto index = static_cast<int>(draw.dwItemSpec);
    const bool isContrast = IsHighContrast();
    const HeaderState state{(draw.uItemState & CDIS_SELECTED) != 0, index == hotTitle_};
    PaintListTitle(draw.hdc, area, state, isContrast);
    const Title title(header_, index, HDI_TEXT | HDI_FORMAT);
    const HGDIOBJ old = SelectObject(draw.hdc, font);
    PaintListText(draw.hdc,
                  {title.text, TitleText(area, ListMeasuresAt(GetDpi())),
                   AsColor(ColorOfTitleText(isContrast)), title.horizontal, VerticalPlace::Bottom});
    SelectObject(draw.hdc, old);
}

} // namespace ObLibX
