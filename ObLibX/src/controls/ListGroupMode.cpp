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

} // namespace

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

ListGroupMode::ListGroupMode() {
    const ListMeasures measures = ListMeasuresAt(GetDpi());
    smallRows_.Reset(EmptyImages(measures.rowHeight));
    largeRows_.Reset(EmptyImages(measures.checkRowHeight));
}

// The list's own procedure and those below ours get it. A client that hears of it may destroy the
// window, and this object with it.
LRESULT ListGroupMode::Stock(UINT message, WPARAM wParam, LPARAM lParam) {
    const HWND list = list_;
    passing_ = message;
    const LRESULT result = SendMessageW(list, message, wParam, lParam);
    if (IsWindow(list) != FALSE) passing_ = 0;
    return result;
}

int ListGroupMode::RowCount() const {
    return static_cast<int>(SendMessageW(list_, LVM_GETITEMCOUNT, 0, 0));
}

// A list whose rows are its client's has no states of its own.
bool ListGroupMode::KnowsChecks() const {
    return (GetWindowLongPtrW(list_, GWL_STYLE) & LVS_OWNERDATA) == 0;
}

// The control resets all check boxes when its own come or go.
template <class Change>
void ListGroupMode::KeepingChecks(bool startsOff, Change change) {
    const HWND list = list_;
    const int count = KnowsChecks() ? RowCount() : 0;
    std::vector<RowCheck> checks(static_cast<std::size_t>(count));
    for (int row = 0; row < count; ++row) {
        RowCheck& check = checks[static_cast<std::size_t>(row)];
        check = CheckOfRow(list, row);
        if (startsOff && check == RowCheck::None) check = RowCheck::Off;
    }
    change();
    for (int row = 0; row < count; ++row) {
        const RowCheck check = checks[static_cast<std::size_t>(row)];
        if (CheckOfRow(list, row) != check) SetCheckOfRow(list, row, check);
    }
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
    list_ = list;
    extendedStyle_ = static_cast<DWORD>(Stock(LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0));
    images_ = reinterpret_cast<HIMAGELIST>(Stock(LVM_GETIMAGELIST, LVSIL_SMALL, 0));
    SendRowImages();
    SetWindowTheme(list, nullptr, nullptr);
    KeepingChecks(true, [&] { SendStyle(); });
}

void ListGroupMode::TurnOff() {
    if (!IsOn()) return;
    const HWND list = list_;
    Stock(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images_));
    SetWindowTheme(list, L"Explorer", nullptr);
    KeepingChecks(false, [&] {
        Stock(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, static_cast<LPARAM>(extendedStyle_));
    });
    if (IsWindow(list) != FALSE) list_ = nullptr;
}

void ListGroupMode::End() {
    if (!IsOn()) return;
    Stock(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images_));
    list_ = nullptr;
}

std::optional<LRESULT> ListGroupMode::OnMessage(HWND list, UINT message, WPARAM wParam,
                                                LPARAM lParam) {
    if (message == passing_) {
        passing_ = 0;
        return std::nullopt;
    }
    if (message == LVM_ENABLEGROUPVIEW) {
        if (wParam != FALSE) {
            TurnOn(list);
        } else {
            TurnOff();
        }
        return std::nullopt;
    }
    return IsOn() ? Answer(message, wParam, lParam) : std::nullopt;
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
    const bool hadChecks = HasChecks();
    extendedStyle_ = mask != 0 ? (before & ~mask) | (style & mask) : style;
    const HWND list = list_;
    SendStyle();
    if (IsWindow(list) == FALSE) return static_cast<LRESULT>(before);
    if (HasChecks() != hadChecks) SendRowImages();
    if (HasChecks() && !hadChecks) KeepingChecks(true, [] {});
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

} // namespace ObLibX
