#include "ObLibX/src/controls/ControlText.h"

#include <algorithm>

#include "ObLib/Src/ObFatal.h"
#include "ObLib/Src/Win32/ObWinGUI.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/dialog/DlgFont.h"

namespace ObLibX {
namespace {

constexpr wchar_t kModule[] = L"ObLibX\\src\\ControlText.cpp";

constexpr int kShortText = 128; // characters, with the NUL

// The numbers of HorizontalPlace are those of the system's flags; the vertical place is arithmetic.
UINT DrawFlags(const ObCustomControl& control, const TextStyle& style) {
    UINT flags = static_cast<UINT>(style.horizontal);
    flags |= style.wraps ? DT_WORDBREAK : DT_SINGLELINE;
    if ((style.hiddenCues & UISF_HIDEACCEL) != 0) flags |= DT_HIDEPREFIX;
    if (control.endEllipsis) flags |= DT_WORD_ELLIPSIS;
    const LONG_PTR extended = GetWindowLongPtrW(control.window, GWL_EXSTYLE);
    if ((extended & WS_EX_RTLREADING) != 0) flags |= DT_RTLREADING;
    return flags;
}

PixelSize Measured(HDC dc, const ObLib::ObString& text, const PixelRect& area, UINT flags) {
    RECT needed{0, 0, area.Width(), 0};
    DrawTextW(dc, text.CStr(), -1, &needed, (flags & ~DT_WORD_ELLIPSIS) | DT_CALCRECT);
    return {needed.right - needed.left, needed.bottom - needed.top};
}

} // namespace

UINT HiddenCues(const ObCustomControl& control) {
    if (!control.useUIState) return UISF_HIDEACCEL;
    return static_cast<UINT>(SendMessageW(control.window, WM_QUERYUISTATE, 0, 0));
}

ObLib::ObString TextOfControl(const ObCustomControl& control) {
    wchar_t text[kShortText] = {};
    const int units = GetWindowTextW(control.window, text, kShortText);
    if (units < kShortText - 1) return ObLib::ObString(text);
    ObLib::ObString whole;
    ObLib::GetWindowTextString(control.window, whole);
    return whole;
}

PixelRect DrawControlText(const ObCustomControl& control, HDC dc, const ObLib::ObString& text,
                          const PixelRect& area, const TextStyle& style) {
    const HFONT font = GetFont(control.fontSize, control.fontName, control.fontWeight, 0);
    ObAssert(font != nullptr);
    const HGDIOBJ old = SelectObject(dc, font);
    const ObLib::ScopeExit restore([&] { SelectObject(dc, old); });
    UINT flags = DrawFlags(control, style);
    const PixelSize size = Measured(dc, text, area, flags);
    const PixelRect placed = PlaceText(area, size, style.horizontal, style.vertical);
    RECT rect = AsRect(placed);
    // Some systems measure a little less than they draw: the room after the text is the text's.
    if (style.horizontal == HorizontalPlace::Left)
        rect.right = std::max(rect.right, LONG{area.right});
    // Of a text that is too long, the beginning is shown.
    if (size.width > area.Width()) flags &= ~static_cast<UINT>(DT_CENTER | DT_RIGHT);
    ::SetTextColor(dc, style.color);
    SetBkMode(dc, TRANSPARENT);
    DrawTextW(dc, text.CStr(), -1, &rect, flags);
    return placed;
}

} // namespace ObLibX
