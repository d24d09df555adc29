#include "ObLibX/src/controls/ObCustList.h"

#include <windowsx.h>

#include <utility>

#include "ObLib/Src/ObFatal.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLibX/src/controls/FittingImage.h"
#include "ObLibX/src/controls/ListColumns.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

constexpr wchar_t kModule[] = L"ObLibX\\src\\ObCustList.cpp";

constexpr std::int32_t kFontSize = 9; // points
constexpr LPARAM kKeyRepeats = LPARAM{1} << 30;

// In the order of ObFlatListView::checkImages.
constexpr ControlImage kCheckImages[] = {ControlImage::CheckOn, ControlImage::CheckOff,
                                         ControlImage::CheckOnDisabled,
                                         ControlImage::CheckOffDisabled};

void AskForLeave(HWND window) {
    TRACKMOUSEEVENT leave{sizeof leave, TME_LEAVE, window, 0};
    TrackMouseEvent(&leave);
}

PixelPoint PointOf(LPARAM lParam) { return {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}; }

int FocusedRow(HWND list) {
    return static_cast<int>(
        SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
}

// Its rows are its client's.
bool HasOwnerData(HWND list) { return (GetWindowLongPtrW(list, GWL_STYLE) & LVS_OWNERDATA) != 0; }

void FocusRow(HWND list, int row) {
    LVITEMW item{};
    item.state = LVIS_FOCUSED;
    item.stateMask = LVIS_FOCUSED;
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

} // namespace

ObFlatListView::ObFlatListView(std::int32_t listId, std::vector<ColumnDescription> columns,
                               ObXDlg* dialog)
    : ObCustomControl(listId, nullptr, L"", kFontSize),
      font(GetFont(kFontSize, L"", fontWeight, 0)), colorSource(dialog),
      columnsToMake_(std::move(columns)) {
    LoadCheckImages();
}

ObFlatListView::~ObFlatListView() {
    if (window != nullptr) Detach();
}

void ObFlatListView::LoadCheckImages() {
    const std::int32_t scale = ScaleOfDpi(GetDpi());
    for (std::size_t at = 0; at < checkImages.size(); ++at) {
        checkImages[at] = ImageOfScale(kCheckImages[at], scale);
    }
    checkSize = ImageSize(checkImages[0].Get());
}

void ObFlatListView::Attach(HWND attached) {
    ObCustomControl::Attach(attached);
    parent_ = GetParent(window);
    ObAssert(parent_ != nullptr);
    isFocused = GetFocus() == window;
    mouse_.reset();
    hotRow_ = hotTitle_ = -1;
    isPainting_ = isBoxed_ = false;
    AddSubclass(window, &ObFlatListView::ListProcedure, this);
    AddSubclass(parent_, &ObFlatListView::ParentProcedure, this);
    OnFontChanged();
    MakeColumns();
    TakeHeader();
    if (IsDetails()) TurnOnGroupView();
    scrollBarHost.Attach(window); // in front, as it looks at messages that are answered here
}

// A list may make its header only when it is shown.
void ObFlatListView::TakeHeader() {
    const auto header = reinterpret_cast<HWND>(SendMessageW(window, LVM_GETHEADER, 0, 0));
    if (header == nullptr || header == header_) return;
    AddSubclass(header, &ObFlatListView::HeaderProcedure, this);
    header_ = header;
}

// The window goes on as a stock list.
void ObFlatListView::Detach() {
    scrollBarHost.Detach();
    if (!ObLib::RanGuarded([&] { TurnOffGroupView(); })) groupMode_.End();
    RemoveSubclass(window, &ObFlatListView::ListProcedure, this);
    RemoveSubclass(parent_, &ObFlatListView::ParentProcedure, this);
    if (header_ != nullptr) {
        RemoveSubclass(header_, &ObFlatListView::HeaderProcedure, this);
    }
    accessible_.End();
}

void ObFlatListView::OnGone() {
    RemoveSubclass(window, &ObFlatListView::ListProcedure, this);
    RemoveSubclass(parent_, &ObFlatListView::ParentProcedure, this);
    groupMode_.End();
    accessible_.End();
}

void ObFlatListView::Refresh() {
    ObCustomControl::Refresh();
    if (scrollBarHost.Host() != nullptr) scrollBarHost.Refresh();
}

void ObFlatListView::OnFontChanged() {
    font = GetControlFont();
    ObCustomControl::OnFontChanged();
}

// As wide as the description has them, of the client area without a scroll bar.
void ObFlatListView::MakeColumns() {
    const auto widths = ColumnWidths(columnsToMake_, ClientArea(window).Width());
    for (std::size_t at = 0; at < columnsToMake_.size(); ++at) {
        const ColumnDescription& described = columnsToMake_[at];
        const ObLib::ObString title =
            described.titleId != 0 ? ObLib::ObString(described.titleId) : ObLib::ObString();
        LVCOLUMNW column{};
        column.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT | LVCF_SUBITEM;
        column.fmt = static_cast<int>(described.alignment);
        column.cx = widths[at];
        column.pszText = const_cast<wchar_t*>(title.CStr());
        column.iSubItem = static_cast<int>(at);
        SendMessageW(window, LVM_INSERTCOLUMNW, at, reinterpret_cast<LPARAM>(&column));
    }
}

void ObFlatListView::TurnOnGroupView() { groupMode_.TurnOn(window); }

void ObFlatListView::TurnOffGroupView() { groupMode_.TurnOff(); }

LRESULT CALLBACK ObFlatListView::ListProcedure(HWND window, UINT message, WPARAM wParam,
                                               LPARAM lParam, UINT_PTR, DWORD_PTR object) {
    auto* const list = reinterpret_cast<ObFlatListView*>(object);
    if (message == WM_NCDESTROY) {
        list->OnGone();
        return CallNextSubclass(window, message, wParam, lParam);
    }
    if (message == WM_PAINT || message == WM_PRINTCLIENT) {
        return list->OnPaint(message, wParam, lParam);
    }
    const auto answer = ObLib::Guarded(std::optional<LRESULT>(),
                                       [&] { return list->OnMessage(message, wParam, lParam); });
    if (answer) return *answer;
    const LRESULT result = CallNextSubclass(window, message, wParam, lParam);
    if (IsWindow(window) == FALSE) return result; // the object may be deleted
    if (list->window == window) list->AfterMessage(message, wParam);
    return result;
}

std::optional<LRESULT> ObFlatListView::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_ERASEBKGND: // every painting fills the ground itself
        if (IsDetails()) return TRUE;
        break;
    case WM_MOUSEMOVE:
        MoveMouse(PointOf(lParam));
        break;
    case WM_MOUSELEAVE:
        MoveMouse(std::nullopt);
        break;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        if (OnPress(PointOf(lParam))) return 0;
        break;
    case WM_KEYDOWN:
        if (OnKey(wParam, (lParam & kKeyRepeats) != 0)) return 0;
        break;
    case WM_CHAR: // of the key that has flipped a check box
        if (wParam == L' ' && FlipsChecks()) return 0;
        break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        isFocused = message == WM_SETFOCUS;
        break;
    case WM_NOTIFY:
        return OnHeaderNotification(wParam, lParam);
    case WM_GETOBJECT: {
        const LRESULT object = accessible_.OnGetObject(window, wParam, lParam, *this);
        if (object != 0) return object;
        break;
    }
    default:
        return groupMode_.OnMessage(window, message, wParam, lParam);
    }
    return std::nullopt;
}

void ObFlatListView::AfterMessage(UINT message, WPARAM wParam) {
    switch (message) {
    case WM_SETFONT:
        if (wParam != 0) font = reinterpret_cast<HFONT>(wParam);
        break;
    case WM_STYLECHANGED:
    case LVM_SETVIEW:
    case LVM_INSERTCOLUMNA:
    case LVM_INSERTCOLUMNW:
        static_cast<void>(ObLib::RanGuarded([&] {
            TakeHeader();
            groupMode_.FollowView();
        }));
        break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
    case WM_ENABLE:
    case WM_UPDATEUISTATE:
        ObCustomControl::Refresh(); // the bars are as they were
        break;
    default:
        break;
    }
}

// ---- The mouse

void ObFlatListView::MoveMouse(std::optional<PixelPoint> place) {
    if (place && !mouse_) AskForLeave(window);
    mouse_ = place;
    UpdateHotRow();
}

// Also before each painting, as rows move under the mouse.
void ObFlatListView::UpdateHotRow() {
    const bool counts = mouse_ && mouse_->y >= ListMeasuresAt(GetDpi()).hoverTop && IsDetails();
    const int row = counts ? RowAt(*mouse_) : -1;
    if (row == hotRow_) return;
    InvalidateRow(std::exchange(hotRow_, row));
    InvalidateRow(row);
}

int ObFlatListView::RowAt(PixelPoint point) const {
    LVHITTESTINFO hit{};
    hit.pt = {point.x, point.y};
    return static_cast<int>(
        SendMessageW(window, LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
}

PixelRect ObFlatListView::AreaOfRow(int row) const {
    RECT area{LVIR_BOUNDS, 0, 0, 0};
    const bool isThere = SendMessageW(window, LVM_GETITEMRECT, static_cast<WPARAM>(row),
                                      reinterpret_cast<LPARAM>(&area)) != FALSE;
    return isThere ? AsPixels(area) : PixelRect{};
}

void ObFlatListView::InvalidateRow(int row) {
    const RECT area = AsRect(row >= 0 ? AreaOfRow(row) : PixelRect{});
    if (area.right > area.left) InvalidateRect(window, &area, FALSE);
}

PixelRect ObFlatListView::FirstCell(int row) const {
    const auto columns = ColumnsOf(window, header_);
    if (columns.empty()) return {};
    const PixelRect area = AreaOfRow(row);
    return {columns[0].left, area.top, columns[0].right, area.bottom};
}

bool ObFlatListView::FlipsChecks() const { return groupMode_.HasChecks() && !HasOwnerData(window); }

// The focus comes to the list and to the row, as from any press; what is selected stays. A client
// that hears of it may destroy the window, and the object with it.
bool ObFlatListView::OnPress(PixelPoint point) {
    if (!FlipsChecks()) return false;
    const int row = RowAt(point);
    if (row < 0) return false;
    if (!CheckArea(FirstCell(row), ListMeasuresAt(GetDpi())).Contains(point)) return false;
    const HWND list = window;
    SetFocus(list);
    if (IsWindow(list) != FALSE) FocusRow(list, row);
    if (IsWindow(list) != FALSE) Flip(row);
    return true;
}

// A key that is held flips once.
bool ObFlatListView::OnKey(WPARAM key, bool repeats) {
    if (key != VK_SPACE || GetKeyState(VK_CONTROL) < 0 || !FlipsChecks()) return false;
    const int row = FocusedRow(window);
    if (row < 0) return false;
    if (!repeats) Flip(row);
    return true;
}

// Clients hear of it as of any change of a row's state, and may refuse it.
void ObFlatListView::Flip(int row) {
    const HWND list = window;
    const RowCheck before = CheckOfRow(list, row);
    SetCheckOfRow(list, row, before == RowCheck::On ? RowCheck::Off : RowCheck::On);
    if (IsWindow(list) == FALSE || CheckOfRow(list, row) == before) return;
    NotifyWinEvent(EVENT_OBJECT_STATECHANGE, list, OBJID_CLIENT, row + 1);
}

// ---- For screen readers

int ObFlatListView::RowCount() {
    return static_cast<int>(SendMessageW(window, LVM_GETITEMCOUNT, 0, 0));
}

bool ObFlatListView::IsRowChecked(int row) { return CheckOfRow(window, row) == RowCheck::On; }

} // namespace ObLibX
