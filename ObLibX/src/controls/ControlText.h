// How flat controls draw their text.
#pragma once

#include <windows.h>

#include "ObLib/Src/ObString.h"
#include "ObLibX/src/controls/ButtonLayout.h"
#include "ObLibX/src/dialog/ObCustCtrl.h"

namespace ObLibX {

// The text colour of a disabled control.
inline constexpr COLORREF kDisabledTextColor = 0x808080;

// What of the keyboard a window shows: UISF_HIDEACCEL, UISF_HIDEFOCUS. A control that doesn't ask
// its window shows the focus and no access keys.
UINT HiddenCues(const ObCustomControl& control);

// The text of a control's window, by a single message where it is short.
ObLib::ObString TextOfControl(const ObCustomControl& control);

struct TextStyle {
    COLORREF color = 0;
    UINT hiddenCues = 0; // HiddenCues
    HorizontalPlace horizontal = HorizontalPlace::Centre;
    VerticalPlace vertical = VerticalPlace::Centre;
    bool wraps = false; // into lines, at blanks
};

// Draws a text in the control's font without italics, underline and strikeout, inside `area`, and
// returns its rectangle. A font that can't be made ends the process.
PixelRect DrawControlText(const ObCustomControl& control, HDC dc, const ObLib::ObString& text,
                          const PixelRect& area, const TextStyle& style);

} // namespace ObLibX
