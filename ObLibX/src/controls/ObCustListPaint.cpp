// How the flat list view comes to be painted, rows by a ListPainter, and its header.
#include <algorithm>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/ControlText.h"
#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/controls/ListPainting.h"
#include "ObLibX/src/controls/ObCustList.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/ObXDlg.h"
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

using UniqueRegion = ObLib::UniqueResource<ObLib::GdiObjectPolicy<HRGN>>;

// The header, and the edit of a label that is changed, which may have painted themselves already.
void ExcludeChildren(HDC dc, HWND list) {
    for (HWND child = GetWindow(list, GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        if (IsWindowVisible(child) == FALSE) continue;
        const PixelRect place = RectInParent(child);
        ExcludeClipRect(dc, place.left, place.top, place.right, place.bottom);
    }
}

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
    if (const auto painter = list->painter_) painter->BeforeParent(draw);
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

// ---- Rows

// A painting in the middle of another one, which a client asks for that is asked for a colour or a
// text, leaves that one's painter alone.
LRESULT ObFlatListView::OnPaint(UINT message, WPARAM wParam, LPARAM lParam) {
    const HWND list = window;
    const bool isOwn = message == WM_PAINT && wParam == 0;
    if (isOwn) {
        UpdateHotRow();
        FollowFocusBox();
    }
    const bool wasPainting = std::exchange(isPainting_, message == WM_PAINT);
    auto outer = std::exchange(painter_, nullptr);
    LRESULT result = 0;
    if (isOwn && !IsBuffered()) {
        PaintOffscreen();
    } else {
        result = CallNextSubclass(list, message, wParam, lParam);
    }
    if (IsWindow(list) == FALSE) return result; // the object may be deleted
    isPainting_ = wasPainting;
    painter_ = std::move(outer);
    return result;
}

// Other views are erased and painted by the system as ever.
bool ObFlatListView::IsBuffered() const {
    if (groupMode_.IsInUse() || !IsDetails()) return true;
    return (SendMessageW(window, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0) & LVS_EX_DOUBLEBUFFER) != 0;
}

// Without group mode the control paints onto the screen, where each row would be the ground first.
void ObFlatListView::PaintOffscreen() {
    const HWND list = window;
    const UniqueRegion invalid(CreateRectRgn(0, 0, 0, 0));
    GetUpdateRgn(list, invalid.Get(), FALSE);
    const PaintDc dc(list);
    const OffscreenPaint picture(list, dc.Get());
    if (!picture) return;
    SelectClipRgn(picture.Dc(), invalid.Get());
    CallNextSubclass(list, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(picture.Dc()), PRF_CLIENT);
    ExcludeChildren(dc.Get(), list);
    picture.Show();
}

// The box around all rows moves with them when they scroll, and goes when a row gets the focus: it
// is painted as a whole or not at all.
void ObFlatListView::FollowFocusBox() {
    const bool isWanted =
        isFocused && (HiddenCues(*this) & UISF_HIDEFOCUS) == 0 &&
        SendMessageW(window, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED) == -1;
    if (std::exchange(isBoxed_, isWanted) || isWanted) InvalidateRect(window, nullptr, FALSE);
}

ListLook ObFlatListView::Look() const {
    ListLook look;
    look.list = window;
    look.header = header_;
    look.id = id;
    look.font = font;
    if (groupMode_.IsInUse()) {
        look.images = groupMode_.Images();
        look.hasChecks = groupMode_.HasChecks();
    } else {
        look.images =
            reinterpret_cast<HIMAGELIST>(SendMessageW(window, LVM_GETIMAGELIST, LVSIL_SMALL, 0));
        look.hasChecks =
            (SendMessageW(window, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0) & LVS_EX_CHECKBOXES) != 0;
    }
    for (std::size_t at = 0; at < checkImages.size(); ++at) {
        look.checkImages[at] = checkImages[at].Get();
    }
    look.checkSize = checkSize;
    look.hasFocus = isFocused;
    look.showsFocus = isFocused && (HiddenCues(*this) & UISF_HIDEFOCUS) == 0;
    look.boxesItself = isBoxed_;
    look.hotRow = hotRow_;
    look.colors = colorSource;
    return look;
}

// Groups are the system's to paint; each is announced as if a painting began.
LRESULT ObFlatListView::OnDrawStage(NMLVCUSTOMDRAW& draw, LRESULT heard) {
    if (draw.dwItemType == LVCDI_GROUP) return heard;
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) {
        painter_.reset();
        if ((heard & CDRF_SKIPDEFAULT) != 0 || !IsDetails()) return heard;
        painter_ = std::make_shared<ListPainter>(Look());
        return heard | painter_->Begin(draw.nmcd.hdc);
    }
    const auto painter = painter_; // the list may go in the middle of it
    return painter != nullptr ? painter->AfterParent(draw, heard) : heard;
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

std::optional<LRESULT> ObFlatListView::OnHeaderNotification(WPARAM wParam, LPARAM lParam) {
    const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
    if (header_ == nullptr || header.hwndFrom != header_) return std::nullopt;
    switch (header.code) {
    case static_cast<UINT>(NM_CUSTOMDRAW):
        return OnTitleStage(reinterpret_cast<const NMCUSTOMDRAW&>(header));
    case static_cast<UINT>(HDN_DIVIDERDBLCLICKA):
    case static_cast<UINT>(HDN_DIVIDERDBLCLICKW):
        if (groupMode_.IsInUse()) return OnDividerClick(wParam, lParam);
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

LRESULT ObFlatListView::OnTitleStage(const NMCUSTOMDRAW& draw) const {
    if (draw.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    if (draw.dwDrawStage != CDDS_ITEMPREPAINT) return CDRF_DODEFAULT;
    PaintTitle(draw);
    return CDRF_SKIPDEFAULT;
}

// The control fits the column to its texts alone.
LRESULT ObFlatListView::OnDividerClick(WPARAM wParam, LPARAM lParam) {
    const HWND list = window;
    const int column = reinterpret_cast<const NMHEADERW*>(lParam)->iItem;
    const LRESULT result = CallNextSubclass(list, WM_NOTIFY, wParam, lParam);
    if (IsWindow(list) != FALSE) groupMode_.FitColumn(column, false);
    return result;
}

void ObFlatListView::PaintTitle(const NMCUSTOMDRAW& draw) const {
    const PixelRect area = AsPixels(draw.rc);
    if (area.IsEmpty()) return;
    const auto index = static_cast<int>(draw.dwItemSpec);
    const bool isContrast = IsHighContrast();
    const HeaderState state{(draw.uItemState & CDIS_SELECTED) != 0, index == hotTitle_};
    PaintListTitle(draw.hdc, area, state, isContrast);
    const Title title = TitleOf(header_, index);
    const HGDIOBJ old = SelectObject(draw.hdc, font);
    PaintListText(draw.hdc,
                  {title.text, TitleText(area, ListMeasuresAt(GetDpi())),
                   AsColor(ColorOfTitleText(isContrast)), title.horizontal, VerticalPlace::Bottom});
    SelectObject(draw.hdc, old);
}

} // namespace ObLibX
