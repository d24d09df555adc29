#include "services/providers/webdav/PickerLayout.h"

namespace providers {
namespace {

SIZE ClientSize(HWND dialog) {
    RECT area{};
    GetClientRect(dialog, &area);
    return {area.right, area.bottom};
}

} // namespace

RECT PlaceIn(HWND dialog, int control) {
    RECT place{};
    GetWindowRect(GetDlgItem(dialog, control), &place);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

void MoveBy(HWND dialog, int control, int distance, bool grows) {
    const RECT place = PlaceIn(dialog, control);
    const int height = place.bottom - place.top - (grows ? distance : 0);
    SetWindowPos(GetDlgItem(dialog, control), nullptr, place.left, place.top + distance,
                 place.right - place.left, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

void PickerLayout::Begin(HWND dialog, std::span<const AnchorRow> rows) {
    RECT window{};
    GetWindowRect(dialog, &window);
    least_ = {window.right - window.left, window.bottom - window.top};
    client_ = ClientSize(dialog);
    for (const AnchorRow& row : rows) controls_.push_back({row, PlaceIn(dialog, row.control)});
    dialog_ = dialog;
}

void PickerLayout::Apply() const {
    if (!dialog_) return;
    const SIZE now = ClientSize(dialog_);
    const LONG wider = now.cx - client_.cx;
    const LONG higher = now.cy - client_.cy;
    const auto by = [](int follows, int edge, LONG distance) {
        return (follows & edge) != 0 ? distance : 0;
    };
    for (const Anchored& control : controls_) {
        const LONG left = control.place.left + by(control.row.leftTop, RightEdge, wider);
        const LONG top = control.place.top + by(control.row.leftTop, BottomEdge, higher);
        const LONG right = control.place.right + by(control.row.rightBottom, RightEdge, wider);
        const LONG bottom = control.place.bottom + by(control.row.rightBottom, BottomEdge, higher);
        SetWindowPos(GetDlgItem(dialog_, control.row.control), nullptr, left, top, right - left,
                     bottom - top, SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

void PickerLayout::Limit(MINMAXINFO& limits) const {
    if (!dialog_) return;
    limits.ptMinTrackSize = {least_.cx, least_.cy};
}

} // namespace providers
