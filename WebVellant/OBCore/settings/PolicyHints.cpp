#include "OBCore/settings/PolicyHints.h"

#include <commctrl.h>

#include "OBCore/modules/ResourceModule.h"
#include "ObLibX/src/dialog/Tooltips.h"

namespace obcore {
namespace {

bool IsTakenAway(HWND control) {
    const LONG_PTR style = GetWindowLongPtrW(control, GWL_STYLE);
    return (style & WS_VISIBLE) != 0 && (style & WS_DISABLED) != 0;
}

RECT PlaceIn(HWND dialog, HWND control) {
    RECT place{};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

} // namespace

void PolicyHints::Show(HWND dialog, std::span<const int> ids) {
    if (tips_ && !IsWindow(tips_)) tips_ = nullptr; // of an earlier opening
    for (const int id : ids) {
        const HWND control = GetDlgItem(dialog, id);
        if (control && IsTakenAway(control)) Add(dialog, id);
    }
}

void PolicyHints::Add(HWND dialog, int id) {
    if (!tips_) {
        text_ = LoadText(TextId::DecidedByAdministrator);
        tips_ = ObLibX::MakeTooltipWindow(dialog);
    }
    TTTOOLINFOW tool{};
    tool.cbSize = TTTOOLINFOW_V2_SIZE; // both versions of the common controls take this size
    tool.uFlags = TTF_SUBCLASS;
    tool.hwnd = dialog;
    tool.uId = static_cast<UINT_PTR>(id);
    tool.rect = PlaceIn(dialog, GetDlgItem(dialog, id));
    tool.lpszText = text_.data();
    SendMessageW(tips_, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    SendMessageW(tips_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

} // namespace obcore
