#include "ObLibX/src/controls/ListGroupMode.h"

#include <uxtheme.h>

#include <utility>
#include <vector>

#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

// Full row selection, activation by one click, painting off-screen, a transparent background.
constexpr DWORD kModeStyles = 0x410060;
static_assert(kModeStyles == (LVS_EX_FULLROWSELECT | LVS_EX_ONECLICKACTIVATE | LVS_EX_DOUBLEBUFFER |
                              0x400000 /* LVS_EX_TRANSPARENTBKGND */));

constexpr int kCheckShift = 12; // of the state image in a state

HIMAGELIST EmptyImages(int height) { return ImageList_Create(1, height, ILC_COLOR, 0, 1); }

UINT StateOf(RowCheck check) { return static_cast<UINT>(check) << kCheckShift; }

// The check boxes of all rows, as they are to be after the control has reset them, as it does when
// its own come or go. Empty for a list whose rows are its client's: it has no states of its own.
class KeptChecks {
public:
    // `startsOff`: rows without a state get one. Throws std::bad_alloc.
    KeptChecks(HWND list, bool startsOff) : list_(list) {
        if ((GetWindowLongPtrW(list, GWL_STYLE) & LVS_OWNERDATA) != 0) return;
        const LRESULT count = SendMessageW(list, LVM_GETITEMCOUNT, 0, 0);
        checks_.resize(static_cast<std::size_t>(count));
        for (int row = 0; row < count; ++row) {
            const RowCheck check = CheckOfRow(list, row);
            checks_[static_cast<std::size_t>(row)] =
                startsOff && check == RowCheck::None ? RowCheck::Off : check;
        }
    }
    void Restore() const {
        for (std::size_t at = 0; at < checks_.size(); ++at) {
            const auto row = static_cast<int>(at);
            if (CheckOfRow(list_, row) != checks_[at]) SetCheckOfRow(list_, row, checks_[at]);
        }
    }

private:
    HWND list_;
    std::vector<RowCheck> checks_; // by row
};

} // namespace

bool IsDetailsView(HWND list) { return SendMessageW(list, LVM_GETVIEW, 0, 0) == LV_VIEW_DETAILS; }

RowCheck CheckOfRow(HWND list, int row) {
    const auto state = static_cast<UINT>(
        SendMessageW(list, LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_STATEIMAGEMASK));
    return static_cast<RowCheck>((state & LVIS_STATEIMAGEMASK) >> kCheckShift);
}

void SetCheckOfRow(HWND list, int row, RowCheck check) {
    LVITEMW item{};
    item.stateMask = LVIS_STATEIMAGEMASK;
    item.state = StateOf(check);
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

ListGroupMode::ListGroupMode() : measures_(ListMeasuresAt(GetDpi())) {
    smallRows_.Reset(EmptyImages(measures_.rowHeight));
    largeRows_.Reset(EmptyImages(measures_.checkRowHeight));
}

// Sent to the window, as all procedures in front have to see it too.
LRESULT ListGroupMode::Stock(UINT message, WPARAM wParam, LPARAM lParam) {
    const HWND list = list_;
    const Sent sent{message, wParam, lParam};
    const Sent* const outer = std::exchange(sending_, &sent);
    const LRESULT result = SendMessageW(list, message, wParam, lParam);
    if (IsWindow(list) != FALSE) sending_ = outer;
    return result;
}

void ListGroupMode::SendStyle() {
    const DWORD style = (extendedStyle_ | kModeStyles) & ~DWORD{LVS_EX_CHECKBOXES};
    Stock(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, static_cast<LPARAM>(style));
}

void ListGroupMode::SendRowImages() {
    const HIMAGELIST rows = HasChecks() ? largeRows_.Get() : smallRows_.Get();
    Stock(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(rows));
}

void ListGroupMode::TurnOn(HWND list) {
    if (IsOn()) return;
    if (IsDetailsView(list)) {
        Enter(list);
    } else {
        list_ = list;
    }
}

void ListGroupMode::TurnOff() {
    if (!IsOn()) return;
    const HWND list = list_;
    if (isInUse_) Leave();
    if (IsWindow(list) != FALSE) list_ = nullptr;
}

void ListGroupMode::FollowView() {
    if (!IsOn() || IsDetailsView(list_) == isInUse_) return;
    if (isInUse_) {
        Leave();
    } else {
        Enter(list_);
    }
}

void ListGroupMode::Enter(HWND list) {
    const KeptChecks checks(list, true);
    list_ = list;
    extendedStyle_ = static_cast<DWORD>(Stock(LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0));
    images_ = reinterpret_cast<HIMAGELIST>(Stock(LVM_GETIMAGELIST, LVSIL_SMALL, 0));
    isInUse_ = true;
    SendRowImages();
    if (IsWindow(list) == FALSE) return;
    SetWindowTheme(list, nullptr, nullptr);
    if (IsWindow(list) != FALSE) SendStyle();
    checks.Restore();
}

// What it sends reaches the control, as the mode isn't in use any more.
void ListGroupMode::Leave() {
    const HWND list = list_;
    const KeptChecks checks(list, false);
    const DWORD style = extendedStyle_;
    isInUse_ = false;
    SendMessageW(list, LVM_SETIMAGELIST, LVSIL_SMALL,
                 reinterpret_cast<LPARAM>(std::exchange(images_, nullptr)));
    SetWindowTheme(list, L"Explorer", nullptr);
    SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, static_cast<LPARAM>(style));
    checks.Restore();
}

void ListGroupMode::End() {
    if (isInUse_) Stock(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images_));
    isInUse_ = false;
    images_ = nullptr;
    list_ = nullptr;
}

std::optional<LRESULT> ListGroupMode::OnMessage(HWND list, UINT message, WPARAM wParam,
                                                LPARAM lParam) {
    if (sending_ != nullptr && *sending_ == Sent{message, wParam, lParam}) return std::nullopt;
    if (message == LVM_ENABLEGROUPVIEW) {
        if (wParam != FALSE) {
            TurnOn(list);
        } else {
            TurnOff();
        }
        return std::nullopt;
    }
    // The control arranges its icons by the client's images.
    if (message == LVM_SETVIEW && wParam != LV_VIEW_DETAILS && isInUse_) {
        Leave();
        return std::nullopt;
    }
    return isInUse_ ? Answer(message, wParam, lParam) : std::nullopt;
}

std::optional<LRESULT> ListGroupMode::Answer(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case LVM_SETIMAGELIST:
        if (wParam != LVSIL_SMALL) return std::nullopt;
        return SetSmallImages(reinterpret_cast<HIMAGELIST>(lParam));
    case LVM_GETIMAGELIST:
        if (wParam != LVSIL_SMALL) return std::nullopt;
        return reinterpret_cast<LRESULT>(images_);
    case LVM_SETEXTENDEDLISTVIEWSTYLE:
        return SetExtendedStyle(static_cast<DWORD>(wParam), static_cast<DWORD>(lParam));
    case LVM_GETEXTENDEDLISTVIEWSTYLE:
        return static_cast<LRESULT>(extendedStyle_);
    case LVM_INSERTITEMA:
    case LVM_INSERTITEMW:
        return Insert(message, lParam);
    case LVM_SETCOLUMNWIDTH: {
        const auto width = static_cast<short>(LOWORD(lParam));
        if (width != LVSCW_AUTOSIZE && width != LVSCW_AUTOSIZE_USEHEADER) return std::nullopt;
        return FitColumn(static_cast<int>(wParam), width == LVSCW_AUTOSIZE_USEHEADER);
    }
    default:
        return std::nullopt;
    }
}

LRESULT ListGroupMode::SetSmallImages(HIMAGELIST images) {
    InvalidateRect(list_, nullptr, FALSE);
    return reinterpret_cast<LRESULT>(std::exchange(images_, images));
}

// A mask of 0 means all styles.
LRESULT ListGroupMode::SetExtendedStyle(DWORD mask, DWORD style) {
    const DWORD before = extendedStyle_;
    const DWORD after = mask != 0 ? (before & ~mask) | (style & mask) : style;
    const bool changesChecks = ((before ^ after) & LVS_EX_CHECKBOXES) != 0;
    const bool getsChecks = changesChecks && (after & LVS_EX_CHECKBOXES) != 0;
    const HWND list = list_;
    const auto checks = getsChecks ? std::optional<KeptChecks>(std::in_place, list, true)
                                   : std::optional<KeptChecks>();
    extendedStyle_ = after;
    SendStyle();
    if (IsWindow(list) == FALSE) return static_cast<LRESULT>(before);
    if (changesChecks) SendRowImages();
    if (checks) checks->Restore();
    return static_cast<LRESULT>(before);
}

// The texts of the two forms of a record differ, not their places.
LRESULT ListGroupMode::Insert(UINT message, LPARAM item) {
    if (item == 0) return Stock(message, 0, 0);
    LVITEMW unchecked = *reinterpret_cast<const LVITEMW*>(item);
    if ((unchecked.mask & LVIF_STATE) == 0) unchecked.state = unchecked.stateMask = 0;
    unchecked.mask |= LVIF_STATE;
    unchecked.stateMask |= LVIS_STATEIMAGEMASK;
    unchecked.state &= ~static_cast<UINT>(LVIS_STATEIMAGEMASK);
    unchecked.state |= StateOf(RowCheck::Off);
    return Stock(message, 0, reinterpret_cast<LPARAM>(&unchecked));
}

int ListGroupMode::ColumnWidth(int column) {
    return static_cast<int>(
        SendMessageW(list_, LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column), 0));
}

// What a cell has that the control doesn't know: check box and picture of the first column, and of
// the insets what is more than at 96 dpi, for which the control leaves room.
int ListGroupMode::PartsBeforeText(int column) const {
    const int insets = 2 * (measures_.inset - ListMeasuresAt(USER_DEFAULT_SCREEN_DPI).inset);
    const bool isFirst = column == 0;
    return insets + (isFirst && HasChecks() ? measures_.checkAdvance : 0) +
           (isFirst && images_ != nullptr ? measures_.iconAdvance : 0);
}

LRESULT ListGroupMode::FitColumn(int column, bool toTitle) {
    const HWND list = list_;
    const auto fitted = [&](int rule) {
        return Stock(LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(column), MAKELPARAM(rule, 0)) !=
                   FALSE &&
               IsWindow(list) != FALSE;
    };
    if (!fitted(LVSCW_AUTOSIZE)) return FALSE;
    const int needed = ColumnWidth(column) + PartsBeforeText(column);
    if (toTitle && !fitted(LVSCW_AUTOSIZE_USEHEADER)) return FALSE;
    if (ColumnWidth(column) >= needed) return TRUE;
    return Stock(LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(column), MAKELPARAM(needed, 0));
}

} // namespace ObLibX
