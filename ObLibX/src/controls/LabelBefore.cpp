#include "ObLibX/src/controls/LabelBefore.h"

#include <string>

#include "ObLib/Src/Win32/ObWinGUI.h"
#include "ObLibX/src/dialog/FlatDressing.h"

namespace ObLibX {
namespace {

// "&&" is one "&"; any other "&" underlines what follows.
std::wstring WithoutAccessKey(const wchar_t* text) {
    std::wstring plain;
    for (; *text != 0; ++text) {
        if (*text == L'&' && *++text == 0) break;
        plain += *text;
    }
    return plain;
}

bool TakesFocus(HWND window) { return (GetWindowLongPtrW(window, GWL_STYLE) & WS_TABSTOP) != 0; }

} // namespace

ObLib::ObString WindowText(HWND window) {
    ObLib::ObString text;
    ObLib::GetWindowTextString(window, text);
    return text;
}

ObLib::ObString LabelText(HWND label) {
    const ObLib::ObString text = WindowText(label);
    const bool hasKeys = (GetWindowLongPtrW(label, GWL_STYLE) & SS_NOPREFIX) == 0;
    return hasKeys ? ObLib::ObString(WithoutAccessKey(text.CStr()).c_str()) : text;
}

ObLib::ObString LabelBefore(HWND window) {
    for (HWND before = GetWindow(window, GW_HWNDPREV); before != nullptr && !TakesFocus(before);
         before = GetWindow(before, GW_HWNDPREV)) {
        if (!IsOfClass(before, L"Static")) continue;
        ObLib::ObString text = LabelText(before);
        if (text.HasText()) return text;
    }
    return {};
}

} // namespace ObLibX
