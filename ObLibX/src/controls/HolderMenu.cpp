#include "ObLibX/src/controls/HolderMenu.h"

#include <algorithm>
#include <iterator>

#include "ObLib/Src/ObString.h"
#include "ObLibX/src/dialog/ToolkitTexts.h"

namespace ObLibX {
namespace {

struct Row {
    std::uint32_t command; // 0: a separator
    std::int32_t horizontalText;
    std::int32_t verticalText;
    void (ObFlatScrollbar::*run)();
};

constexpr Row kSeparator{0, 0, 0, nullptr};
constexpr Row kRows[] = {
    {63000, kTextScrollHere, kTextScrollHere, &ObFlatScrollbar::ScrollHere},
    kSeparator,
    {63001, kTextLeftEdge, kTextTop, &ObFlatScrollbar::ScrollToStart},
    {63002, kTextRightEdge, kTextBottom, &ObFlatScrollbar::ScrollToEnd},
    kSeparator,
    {63003, kTextPageLeft, kTextPageUp, &ObFlatScrollbar::PageBack},
    {63004, kTextPageRight, kTextPageDown, &ObFlatScrollbar::PageForward},
    kSeparator,
    {63005, kTextScrollLeft, kTextScrollUp, &ObFlatScrollbar::LineBack},
    {63006, kTextScrollRight, kTextScrollDown, &ObFlatScrollbar::LineForward},
    kSeparator,
};

void Append(HMENU menu, std::uint32_t command, std::int32_t textId) {
    ObLib::ObString text;
    text.LoadStringW(textId);
    AppendMenuW(menu, MF_STRING, command, text.CStr());
}

} // namespace

HolderMenu::HolderMenu(ScrollOrientation orientation, bool isAutoHide) : menu_(CreatePopupMenu()) {
    if (!menu_) return;
    for (const Row& row : kRows) {
        if (row.command == 0) {
            AppendMenuW(menu_.Get(), MF_SEPARATOR, 0, nullptr);
        } else {
            Append(menu_.Get(), row.command,
                   orientation == ScrollOrientation::Vertical ? row.verticalText
                                                              : row.horizontalText);
        }
    }
    if (isAutoHide) {
        Append(menu_.Get(), kCommandShowBars, kTextShowScrollbars);
    } else {
        Append(menu_.Get(), kCommandHideBars, kTextHideScrollbars);
    }
}

std::uint32_t HolderMenu::Choose(HWND window, POINT point) const {
    if (!menu_) return 0;
    return static_cast<std::uint32_t>(TrackPopupMenu(menu_.Get(), TPM_RETURNCMD | TPM_RIGHTBUTTON,
                                                     point.x, point.y, 0, window, nullptr));
}

bool RunBarCommand(ObFlatScrollbar& bar, std::uint32_t command) {
    const auto* const found = std::ranges::find(kRows, command, &Row::command);
    if (command == 0 || found == std::end(kRows)) return false;
    (bar.*found->run)();
    return true;
}

} // namespace ObLibX
