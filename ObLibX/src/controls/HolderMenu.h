// The context menu of a hosted scroll bar.
#pragma once

#include <windows.h>

#include <cstdint>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/ObCustScroll.h"

namespace ObLibX {

// Its commands besides those of the bar.
inline constexpr std::uint32_t kCommandShowBars = 63007;
inline constexpr std::uint32_t kCommandHideBars = 63008;

// On the thread of the dialogs, for a scope.
class HolderMenu {
public:
    // `isAutoHide`: the bars are hidden while nobody uses them, so that the menu offers to show
    // them always. Texts that the language module lacks are empty.
    HolderMenu(ScrollOrientation orientation, bool isAutoHide);

    // Empty when the system has no memory for it.
    [[nodiscard]] HMENU Get() const { return menu_.Get(); }

    // Shows the menu at a point of the screen until the user has chosen. 0: nothing was chosen.
    // The window gets the messages of menus; it may be gone afterwards.
    [[nodiscard]] std::uint32_t Choose(HWND window, POINT point) const;

private:
    ObLib::UniqueMenu menu_;
};

// Runs a command of the menu on a bar; false for the commands above and for no command.
bool RunBarCommand(ObFlatScrollbar& bar, std::uint32_t command);

} // namespace ObLibX
