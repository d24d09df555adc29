#include "ObLibX/src/controls/ObCustStatic.h"

#include <commctrl.h>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLibX/src/controls/ControlText.h"
#include "ObLibX/src/controls/HelperWindow.h"
#include "ObLibX/src/controls/LabelBefore.h"
#include "ObLibX/src/controls/TextMeasure.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace ObLibX {
namespace {

struct StyleFlag {
    DWORD style;
    UINT flag;
};

// By the two bits SS_ELLIPSISMASK.
constexpr StyleFlag kEllipses[] = {{SS_ENDELLIPSIS, DT_END_ELLIPSIS},
                                   {SS_PATHELLIPSIS, DT_PATH_ELLIPSIS},
                                   {SS_WORDELLIPSIS, DT_WORD_ELLIPSIS}};

bool IsOneLine(DWORD style) {
    const DWORD type = style & SS_TYPEMASK;
    return type == SS_SIMPLE || type == SS_LEFTNOWORDWRAP;
}

// How DrawText measures the text of a window of this style.
UINT TextFlags(DWORD style) {
    UINT flags = IsOneLine(style) ? 0 : DT_WORDBREAK;
    for (const StyleFlag& row : kEllipses) {
        if ((style & SS_ELLIPSISMASK) == row.style) flags |= row.flag;
    }
    if ((style & SS_NOPREFIX) != 0) flags |= DT_NOPREFIX;
    return flags;
}

TextSize SizeOf(HWND window) {
    RECT rect{};
    GetWindowRect(window, &rect);
    return {rect.right - rect.left, rect.bottom - rect.top};
}

void Resize(HWND window, const TextSize& size) {
    SetWindowPos(window, nullptr, 0, 0, size.width, size.height,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace

ObFlatStaticText::ObFlatStaticText(std::int32_t controlId, const ObLib::ObString& name,
                                   std::int32_t size, std::int32_t weight, std::int32_t style,
                                   COLORREF color)
    : ObCustomControl(controlId, nullptr, name, size) {
    fontWeight = weight;
    fontStyle = style;
    textColor = color;
    fillColor = GetPaletteColor(kPaletteWhite);
}

// A window that outlives its object goes on as a stock one.
ObFlatStaticText::~ObFlatStaticText() {
    RemoveSubclass(window, &ObFlatStaticText::Procedure, this);
}

void ObFlatStaticText::Attach(HWND attached) {
    ObCustomControl::Attach(attached);
    wantedSize_ = fontSize;
    SetFont();
    FitText(nullptr);
    AddSubclass(window, &ObFlatStaticText::Procedure, this);
}

LRESULT CALLBACK ObFlatStaticText::Procedure(HWND window, UINT message, WPARAM wParam,
                                             LPARAM lParam, UINT_PTR, DWORD_PTR object) {
    auto* const text = reinterpret_cast<ObFlatStaticText*>(object);
    if (message == WM_NCDESTROY) {
        text->fontSize = text->wantedSize_;
        RemoveSubclass(window, &ObFlatStaticText::Procedure, text);
    }
    const LRESULT result = CallNextSubclass(window, message, wParam, lParam);
    if (message == WM_SETTEXT) {
        static_cast<void>(ObLib::RanGuarded([&] { text->OnTextSet(); }));
    }
    return result;
}

void ObFlatStaticText::SetFont() {
    SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(GetControlFont()), TRUE);
}

void ObFlatStaticText::OnFontChanged() {
    wantedSize_ = fontSize;
    SetFont();
    FitText(nullptr);
    Refresh();
}

// What the longer text before left beside the new one is filled; the window then paints again.
void ObFlatStaticText::OnTextSet() {
    FitText(nullptr);
    RECT client{};
    GetClientRect(window, &client);
    const HDC dc = GetDC(window);
    if (dc == nullptr) return;
    FillRect(dc, &client, brush_.Get(GetFillColor()));
    ReleaseDC(window, dc);
    Refresh();
}

void ObFlatStaticText::FitText(const wchar_t* newText) {
    const ObLib::ObString text = newText != nullptr ? ObLib::ObString(newText) : WindowText(window);
    const UINT flags = TextFlags(static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE)));
    const TextFit now{SizeOf(window), fontSize};
    const TextFit fit = ObLibX::FitText(now, GetDpi(), [&](std::int32_t size, bool isWrapped) {
        fontSize = size;
        const UINT used = isWrapped ? flags : flags & ~static_cast<UINT>(DT_WORDBREAK);
        return MeasureTextIn(GetControlFont(), text, now.window.width, used);
    });
    fontSize = fit.fontSize;
    if (fit.fontSize != now.fontSize) SetFont();
    if (fit.window != now.window) Resize(window, fit.window);
}

HBRUSH ObFlatStaticText::OnCtlColor(HDC dc, HWND control) {
    ::SetTextColor(dc, IsWindowEnabled(control) ? GetTextColor() : kDisabledTextColor);
    SetBkMode(dc, TRANSPARENT);
    const COLORREF fill = GetRawFillColor();
    return brush_.Get(fill != kNoColor ? fill : GetFillColor());
}

COLORREF ObFlatStaticText::GetRawFillColor() {
    return IsHighContrast() ? GetSysColor(COLOR_WINDOW) : fillColor;
}

} // namespace ObLibX
